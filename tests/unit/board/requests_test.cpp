// Requests: accepted or refused, for one board or all, on a thread of their own or the caller's.
#include <cerrno>
#include <thread>

#include "board_room.h"
#include "plugins/recorder/host.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class Requests : public BoardRoom {
  protected:
    Requests() {
        const CPlugin* plugin = AddPlugin();
        AddBoard("B", 0, plugin);
        AddBoard("C", 1, plugin);
    }
    ~Requests() override { latch.Open(); }

    // What thread each of the plug-in's calls ran on.
    void NoteThreads(const std::string& entry) {
        doors.On(entry, [this] {
            const std::lock_guard hold(mutex_);
            threads_.push_back(std::this_thread::get_id());
            return OAM_SUCCESS;
        });
    }
    std::vector<std::thread::id> Threads() {
        EXPECT_TRUE(WaitForThreads());
        const std::lock_guard hold(mutex_);
        return threads_;
    }

    Latch latch;

  private:
    std::mutex mutex_;
    std::vector<std::thread::id> threads_;
};

TEST_F(Requests, AreRefusedWhileTheDoorIsClosed) {
    EXPECT_EQ(_oamStartBoard("B", 0), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(_oamStopBoard(nullptr, 0), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(_oamTestBoard("None", 0), OAMERR_SERVER_NOT_RUNNING);
    openForRequests();
    EXPECT_TRUE(isOpenForRequests());
    closeForRequests();
    EXPECT_FALSE(isOpenForRequests());
    EXPECT_EQ(_oamStartBoard("B", 0), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Requests, ForAnUnknownBoardAreNotFound) {
    openForRequests();
    EXPECT_EQ(_oamStartBoard("None", 0), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamStopBoard("None", OAM_SYNCHRONIZED), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamTestBoard("None", 0), OAMERR_NOT_FOUND);
}

TEST_F(Requests, WithoutAThreadAreRefusedAndTheBoardStaysIdle) {
    openForRequests();
    for (auto* request : {&_oamStartBoard, &_oamStopBoard, &_oamTestBoard}) {
        const SystemFault fault("pthread_create", 1, EAGAIN);
        EXPECT_EQ(request("B", 0), OAMERR_CANT_CREATE_THREAD);
        EXPECT_TRUE(fault.HasHappened());
    }
    EXPECT_EQ(StateOf("B"), BOARD_STATE_IDLE);
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Requests, WithoutMemoryAreRefused) {
    openForRequests();
    EXPECT_EQ(FailEachAllocation([&] { return _oamStartBoard("B", 0); },
                                 [&](oam_result result) {
                                     EXPECT_TRUE(result == OAMERR_NOT_ENOUGH_MEMORY ||
                                                 result == OAMERR_CANT_CREATE_THREAD);
                                     EXPECT_THAT(doors.Calls(), IsEmpty());
                                 }),
              OAM_SUCCESS);
    EXPECT_TRUE(WaitForThreads());
}

TEST_F(Requests, SynchronizedOnesRunInTheCallersThread) {
    openForRequests();
    NoteThreads("p1.StartBoard");
    EXPECT_EQ(_oamStartBoard("B", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(Threads(), ElementsAre(std::this_thread::get_id()));
    EXPECT_EQ(doors.DebugText().substr(0, 27), "Perform Synchronized Start\n");
    NoteThreads("p1.StopBoard");
    EXPECT_EQ(_oamStopBoard("B", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(Threads().size(), 2u);
    EXPECT_THAT(doors.DebugText(), ::testing::HasSubstr("Perform Synchronized Stop\n"));
}

TEST_F(Requests, SettingSynchronizesStartsAndStopsButNoTests) {
    openForRequests();
    g_bSynchronizeEnabled = true;
    NoteThreads("p1.StartBoard");
    NoteThreads("p1.TestBoard");
    EXPECT_EQ(_oamStartBoard("B", 0), OAM_SUCCESS);
    EXPECT_THAT(Threads(), ElementsAre(std::this_thread::get_id()));
    EXPECT_EQ(_oamTestBoard("B", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_NE(Threads().back(), std::this_thread::get_id());
    EXPECT_THAT(doors.Calls(), ::testing::Contains("p1.TestBoard(B, 2)"));
}

TEST_F(Requests, UnsynchronizedOnesHaveAThreadOfTheirOwn) {
    openForRequests();
    NoteThreads("p1.StartBoard");
    EXPECT_EQ(_oamStartBoard("B", 0), OAM_SUCCESS);
    EXPECT_NE(Threads().front(), std::this_thread::get_id());
}

// ---- Every board

TEST_F(Requests, ForEveryBoardStartAThreadForEach) {
    openForRequests();
    doors.On("p1.TestBoard", [&] {
        latch.Wait();
        return OAM_SUCCESS;
    });
    EXPECT_EQ(_oamTestBoard(nullptr, 7), OAM_SUCCESS);
    EXPECT_TRUE(latch.WaitForArrival(2)) << "at the same time";
    latch.Open();
    EXPECT_TRUE(WaitForThreads());
    EXPECT_THAT(doors.CallsOf({"p1.TestBoard"}),
                UnorderedElementsAre("p1.TestBoard(B, 7)", "p1.TestBoard(C, 7)"));
}

TEST_F(Requests, ForEveryBoardSynchronizedGoOneByOneUnderBothLocks) {
    openForRequests();
    doors.On("p1.StopBoard", [] {
        EXPECT_GE(ManagerMutex::Depth(), 1);
        EXPECT_GE(TableMutex::Depth(), 1);
        return OAM_SUCCESS;
    });
    EXPECT_EQ(_oamStopBoard(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_FALSE(HoldsDatabaseLock());
    EXPECT_THAT(doors.CallsOf({"p1.StopBoard"}),
                ElementsAre("p1.StopBoard(B)", "p1.StopBoard(C)"));
    EXPECT_EQ(doors.DebugText(), "Perform Synchronized Stop\n"
                                 "stopBoardThread: Calling plug-in StopBoard( \"B\" );\n"
                                 "stopBoardThread: StopBoard( \"B\" ); Complete!\n"
                                 "stopBoardThread: Calling plug-in StopBoard( \"C\" );\n"
                                 "stopBoardThread: StopBoard( \"C\" ); Complete!\n");
}

TEST_F(Requests, ForEveryBoardSynchronizedStartIsNotTracedAsComplete) {
    openForRequests();
    EXPECT_EQ(_oamStartBoard(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(doors.DebugText().find("Complete!"), std::string::npos);
    EXPECT_THAT(doors.CallsOf({"p1.StartBoard"}),
                ElementsAre("p1.StartBoard(B)", "p1.StartBoard(C)"));
}

TEST_F(Requests, ForEveryBoardFollowATableThatChanges) {
    openForRequests();
    doors.On("p1.StartBoard", [this] {
        doors.On("p1.StartBoard", nullptr);
        return boardTable().Remove("C");
    });
    EXPECT_EQ(_oamStartBoard(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"p1.StartBoard"}), ElementsAre("p1.StartBoard(B)"));
}

TEST_F(Requests, ForEveryBoardWithoutAThreadTellAndGoOn) {
    openForRequests();
    const struct {
        oam_result (*request)(const char*, unsigned) noexcept;
        const char* told;
    } rows[] = {
        {&_oamStartBoard, "AlertNotify(OAMEVN_STARTBOARD_DONE, 2, B, Can't create thread to start "
                          "board.)"},
        {&_oamStopBoard, "AlertNotify(OAMEVN_STOPBOARD_DONE, 2, B, Can't create thread to stop "
                         "board.)"},
        {&_oamTestBoard, "AlertNotify(OAMEVN_TESTBOARD_DONE, 2, B, Can't create thread to start "
                         "board.)"}};
    for (const auto& row : rows) {
        doors.TakeCalls();
        // The first thread is the request's own, the second the one for B.
        const SystemFault fault("pthread_create", 2, EAGAIN);
        EXPECT_EQ(row.request(nullptr, 0), OAM_SUCCESS);
        EXPECT_TRUE(WaitForThreads());
        EXPECT_THAT(doors.CallsOf({"AlertNotify"}), ::testing::Contains(row.told));
        EXPECT_THAT(doors.Calls(), ::testing::Contains(::testing::ContainsRegex("p1.*Board.C")))
            << "the next board";
    }
}

TEST_F(Requests, ForEveryBoardInAnEmptyTableDoNothing) {
    openForRequests();
    {
        const TableGuard hold;
        boardTable().RemoveAll();
    }
    EXPECT_EQ(_oamStartBoard(nullptr, 0), OAM_SUCCESS);
    EXPECT_TRUE(WaitForThreads());
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

// ---- The end of board communication

TEST_F(Requests, ThatStillWaitForTheirThreadAreDroppedAtTheEnd) {
    openForRequests();
    {
        // The worker gets no further than the table.
        const TableGuard hold;
        EXPECT_EQ(_oamStartBoard("B", 0), OAM_SUCCESS);
        closeForRequests();
        openForRequests();
    }
    EXPECT_TRUE(WaitForThreads());
    EXPECT_THAT(doors.Calls(), IsEmpty()) << "also when it has begun anew";
    EXPECT_EQ(StateOf("B"), BOARD_STATE_IDLE);
}

TEST_F(Requests, AutomaticStartWaitsFiveSecondsAndAsksForMarkedBoards) {
    openForRequests();
    g_bAutoStartEnabled = true;
    {
        const TableGuard hold;
        Board("C").values.autoStart = true;
    }
    startMarkedBoardsLater();
    EXPECT_TRUE(WaitForThreads());
    EXPECT_THAT(doors.Calls(),
                ElementsAre("zolSleep(5)", "p1.StartBoard(C)",
                            "AlertNotify(OAMEVN_STARTBOARD_DONE, 0, C, Board is started.\n)"));
}

TEST_F(Requests, AutomaticStartIsDroppedWhenTheDoorWasClosedMeanwhile) {
    openForRequests();
    g_bAutoStartEnabled = true;
    {
        const TableGuard hold;
        Board("C").values.autoStart = true;
    }
    doors.On("zolSleep", [] {
        closeForRequests();
        openForRequests();
        return OAM_SUCCESS;
    });
    startMarkedBoardsLater();
    EXPECT_TRUE(WaitForThreads());
    EXPECT_THAT(doors.Calls(), ElementsAre("zolSleep(5)"));
}

TEST_F(Requests, AutomaticStartWithoutAThreadIsNoFailure) {
    openForRequests();
    const SystemFault fault("pthread_create", 1, EAGAIN);
    startMarkedBoardsLater();
    EXPECT_TRUE(fault.HasHappened());
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Requests, ForAllBoardsEndWhereThereIsANewOneAfterEach) {
    int made = 0;
    doors.On("p1.StartBoard", [&] {
        EXPECT_LT(made, 1000);
        AddBoard("D" + std::to_string(1000 + made), static_cast<unsigned>(2 + made),
                 plugins().Find("a.bpi"));
        ++made;
        return OAM_SUCCESS;
    });
    openForRequests();
    EXPECT_EQ(_oamStartBoard(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_GT(made, 2) << "those that are new are started too";
}

}  // namespace
}  // namespace oam::test
