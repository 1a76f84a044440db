// One board's start, stop and test: the state machine, the texts and the traces.
#include "board/workers.h"

#include "board_room.h"
#include "plugins/recorder/host.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Workers : public BoardRoom {
  protected:
    Workers() {
        AddBoard("B", 0, AddPlugin());
        openForRequests();
    }
    ~Workers() override { latch.Open(); }

    // A request of each kind, waited for.
    void Start(unsigned flags = 0) { Finish(_oamStartBoard("B", flags)); }
    void Stop(unsigned flags = 0) { Finish(_oamStopBoard("B", flags)); }
    void Test(unsigned value = 0) { Finish(_oamTestBoard("B", value)); }
    void Finish(oam_result accepted) {
        EXPECT_EQ(accepted, OAM_SUCCESS);
        EXPECT_TRUE(WaitForThreads());
    }
    static std::string Done(const char* event, unsigned severity, const std::string& text) {
        return std::string("AlertNotify(") + event + ", " + std::to_string(severity) + ", B, " +
               text + ")";
    }
    // Puts the board into a state that no worker of it will end.
    void SetState(unsigned state) {
        const TableGuard hold;
        Board("B").state = state;
    }

    Latch latch;
};

constexpr const char* kStarted = "OAMEVN_STARTBOARD_DONE";
constexpr const char* kStopped = "OAMEVN_STOPBOARD_DONE";
constexpr const char* kTested = "OAMEVN_TESTBOARD_DONE";

TEST_F(Workers, StartCallsThePluginAndTellsTheOutcome) {
    unsigned state = 99;
    doors.On("p1.StartBoard", [&] {
        state = StateOf("B");
        EXPECT_FALSE(HoldsDatabaseLock());
        return OAM_SUCCESS;
    });
    Start();
    EXPECT_EQ(state, BOARD_STATE_BEING_STARTED);
    EXPECT_EQ(StateOf("B"), BOARD_STATE_IDLE);
    EXPECT_THAT(doors.Calls(),
                ElementsAre("p1.StartBoard(B)", Done(kStarted, 0, "Board is started.\n")));
    EXPECT_EQ(doors.DebugText(),
              "startBoardThread: set Board (B) state to BOARD_STATE_BEING_STARTED\n"
              "startBoardThread: Calling plug-in StartBoard( \"B\" );\n"
              "startBoardThread: set Board (B) state from 1 to 0 \n");
}

TEST_F(Workers, StopAnnouncesItselfWaitsAndCallsThePlugin) {
    unsigned state = 99;
    doors.On("p1.StopBoard", [&] {
        state = StateOf("B");
        return OAM_SUCCESS;
    });
    Stop();
    EXPECT_EQ(state, BOARD_STATE_BEING_STOPPED);
    EXPECT_EQ(StateOf("B"), BOARD_STATE_IDLE);
    EXPECT_THAT(doors.Calls(),
                ElementsAre(Done("OAMEVN_STOPBOARD_REQ", 0, "Stop board in 150ms."),
                            "zolSleepMs(150)", "p1.StopBoard(B)",
                            Done(kStopped, 0, "Board is stopped.")));
    EXPECT_EQ(doors.DebugText(), "stopBoardThread: Calling plug-in StopBoard( \"B\" );\n");
}

TEST_F(Workers, TestPassesItsValueOn) {
    unsigned state = 99;
    doors.On("p1.TestBoard", [&] {
        state = StateOf("B");
        return OAM_SUCCESS;
    });
    Test(0xAB3);
    EXPECT_EQ(state, BOARD_STATE_BEING_TESTED);
    EXPECT_EQ(StateOf("B"), BOARD_STATE_IDLE);
    EXPECT_THAT(doors.Calls(), ElementsAre("p1.TestBoard(B, 2739)",
                                           Done(kTested, 0, "Test of board was successful.")));
    EXPECT_EQ(doors.DebugText(),
              "testBoardThread: Calling plug-in TestBoard( \"B, 0xAB3\" );\n");
}

TEST_F(Workers, FailureIsToldAndLeavesTheBoardIdle) {
    for (const char* entry : {"p1.StartBoard", "p1.StopBoard", "p1.TestBoard"}) {
        doors.Answer(entry, oam_result(9));
    }
    Start();
    EXPECT_EQ(doors.Calls().back(), Done(kStarted, 2, "Failed to start board.\n"));
    Stop();
    EXPECT_EQ(doors.Calls().back(), Done(kStopped, 2, "Failed to stop board."));
    Test();
    EXPECT_EQ(doors.Calls().back(), Done(kTested, 2, "Test of board failed."));
    EXPECT_EQ(StateOf("B"), BOARD_STATE_IDLE);
}

TEST_F(Workers, RefusalNamesTheStateThatWasFound) {
    const char* const waitStart = "Board is currently being started. Wait for the "
                                  "OAMEVN_STARTBOARD_DONE before ";
    const char* const waitStop = "Board is currently being stopped. Wait for the "
                                 "OAMEVN_STOPBOARD_DONE before ";
    const char* const waitTest = "Board is currently being tested. Wait for the "
                                 "OAMEVN_TESTBOARD_DONE before ";
    const char* const transition = "Board is currently is a transition state. Wait before ";
    const struct {
        unsigned state;
        std::string start;
        std::string stop;
        std::string test;
    } rows[] = {{1, "Board is currently being started.", std::string(waitStart) + "stopping it",
                 std::string(waitStart) + "testing it"},
                {2, std::string(waitStop) + "restarting it", "Board is currently being stopped.",
                 std::string(waitStop) + "testing it"},
                {3, std::string(waitTest) + "starting it", std::string(waitTest) + "stopping it",
                 "Board is currently being tested."},
                {4, std::string(transition) + "starting the board",
                 std::string(transition) + "stopping the board",
                 std::string(transition) + "testing the board"},
                {0xFFFFFFFF, std::string(transition) + "starting the board",
                 std::string(transition) + "stopping the board",
                 std::string(transition) + "testing the board"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.state);
        SetState(row.state);
        Start();
        Stop();
        Test();
        EXPECT_THAT(doors.TakeCalls(),
                    ElementsAre(Done(kStarted, 2, row.start), Done(kStopped, 2, row.stop),
                                Done(kTested, 2, row.test)));
        EXPECT_EQ(StateOf("B"), row.state) << "unchanged";
    }
}

TEST_F(Workers, RefusalIsTracedWithTheState) {
    SetState(3);
    Start();
    Stop();
    Test();
    EXPECT_EQ(doors.DebugText(), "startBoardThread: Board is currently is state 3( \"B\" );\n"
                                 "stopBoardThread: Board is currently is state 3( \"B\" );\n"
                                 "testBoardThread: Board is currently is state 3( \"B\" );\n");
}

TEST_F(Workers, SecondRequestIsRefusedWhileTheFirstRuns) {
    doors.On("p1.StartBoard", [&] {
        latch.Wait();
        return OAM_SUCCESS;
    });
    EXPECT_EQ(_oamStartBoard("B", 0), OAM_SUCCESS);
    ASSERT_TRUE(latch.WaitForArrival());
    EXPECT_EQ(_oamTestBoard("b", 0), OAM_SUCCESS) << "accepted; the refusal is an alert";
    EXPECT_TRUE(doors.WaitForCall("AlertNotify(OAMEVN_TESTBOARD_DONE, 2, b, Board is currently "
                                  "being started. Wait for the OAMEVN_STARTBOARD_DONE before "
                                  "testing it)"));
    EXPECT_EQ(StateOf("B"), BOARD_STATE_BEING_STARTED);
    latch.Open();
    EXPECT_TRUE(WaitForThreads());
    EXPECT_EQ(StateOf("B"), BOARD_STATE_IDLE);
}

TEST_F(Workers, BoardsWorkSideBySide) {
    AddBoard("C", 1, plugins().Find("a.bpi"));
    doors.On("p1.StartBoard", [&] {
        latch.Wait();
        return OAM_SUCCESS;
    });
    EXPECT_EQ(_oamStartBoard("B", 0), OAM_SUCCESS);
    EXPECT_EQ(_oamStartBoard("C", 0), OAM_SUCCESS);
    EXPECT_TRUE(latch.WaitForArrival(2));
    latch.Open();
    EXPECT_TRUE(WaitForThreads());
}

TEST_F(Workers, BoardWithoutAPluginIsNotFound) {
    AddBoard("Unserved", 1, nullptr);
    Finish(_oamStartBoard("Unserved", 0));
    Finish(_oamStopBoard("Unserved", 0));
    Finish(_oamTestBoard("Unserved", 0));
    EXPECT_THAT(doors.Calls(),
                ElementsAre("AlertNotify(OAMEVN_STARTBOARD_DONE, 2, Unserved, Board not found.)",
                            "AlertNotify(OAMEVN_STOPBOARD_DONE, 2, Unserved, Board not found.)",
                            "AlertNotify(OAMEVN_TESTBOARD_DONE, 2, Unserved, Board not found.)"));
    EXPECT_EQ(StateOf("Unserved"), BOARD_STATE_IDLE);
}

TEST_F(Workers, BoardRemovedMeanwhileEndsItsWorkerQuietly) {
    doors.On("p1.StartBoard", [] {
        const TableGuard hold;
        return boardTable().Remove("B");
    });
    Start();
    EXPECT_EQ(doors.Calls().back(), Done(kStarted, 0, "Board is started.\n"));
    EXPECT_THAT(BoardNames(), IsEmpty());
}

TEST_F(Workers, BoardRenamedMeanwhileBecomesIdleUnderItsNewName) {
    doors.On("p1.TestBoard", [] {
        const TableGuard hold;
        OwnedText name;
        EXPECT_TRUE(name.Assign("Renamed"));
        Board("B").name = std::move(name);
        return OAM_SUCCESS;
    });
    Test();
    EXPECT_EQ(StateOf("Renamed"), BOARD_STATE_IDLE);
}

TEST_F(Workers, AnotherBoardOfTheNameIsLeftAlone) {
    doors.On("p1.TestBoard", [this] {
        {
            const TableGuard hold;
            EXPECT_EQ(boardTable().Remove("B"), OAM_SUCCESS);
        }
        AddBoard("B", 5, nullptr);
        SetState(BOARD_STATE_BEING_STARTED);
        return OAM_SUCCESS;
    });
    Test();
    EXPECT_EQ(StateOf("B"), BOARD_STATE_BEING_STARTED);
}

TEST_F(Workers, ForeignNameIsNeverAFormat) {
    AddBoard("100%s%n", 1, plugins().Find("a.bpi"));
    Finish(_oamStartBoard("100%s%n", 0));
    EXPECT_EQ(doors.Calls().back(),
              "AlertNotify(OAMEVN_STARTBOARD_DONE, 0, 100%s%n, Board is started.\n)");
}

// ---- Automatic requests

TEST_F(Workers, AutomaticStartActsOnMarkedBoardsOnly) {
    for (int i = 0; i < 4; ++i) {
        g_bAutoStartEnabled = (i & 1) != 0;
        Board("B").values.autoStart = (i & 2) != 0;
        doors.TakeCalls();
        Start(OAM_AUTOMATIC);
        EXPECT_EQ(doors.CallsOf({"p1.StartBoard"}).size(), i == 3 ? 1u : 0u) << i;
        EXPECT_EQ(doors.Calls().empty(), i != 3) << "silently";
    }
}

TEST_F(Workers, AutomaticStartOfAnUnmarkedBoardDoesNotLookAtItsState) {
    SetState(2);
    Start(OAM_AUTOMATIC);
    EXPECT_THAT(doors.Calls(), IsEmpty());
    EXPECT_EQ(doors.DebugText(), "");
}

TEST_F(Workers, AutomaticStopOfAnUnmarkedBoardOnlyTurnsItsStateOverAndBack) {
    g_bAutoStopEnabled = true;
    Stop(OAM_AUTOMATIC);
    EXPECT_THAT(doors.Calls(), IsEmpty());
    EXPECT_EQ(StateOf("B"), BOARD_STATE_IDLE);
    SetState(1);
    Stop(OAM_AUTOMATIC);
    EXPECT_EQ(doors.CallsOf({"AlertNotify"}).size(), 1u) << "its state comes first";
}

TEST_F(Workers, AutomaticStopActsOnMarkedBoards) {
    g_bAutoStopEnabled = true;
    Board("B").values.autoStop = true;
    Stop(OAM_AUTOMATIC);
    EXPECT_EQ(doors.Calls().back(), Done(kStopped, 0, "Board is stopped."));
}

TEST_F(Workers, AutomaticStopOfABoardWithoutAPluginIsStillToldSo) {
    AddBoard("Unserved", 1, nullptr);
    Finish(_oamStopBoard("Unserved", OAM_AUTOMATIC));
    EXPECT_THAT(doors.Calls(),
                ElementsAre("AlertNotify(OAMEVN_STOPBOARD_DONE, 2, Unserved, Board not found.)"));
}

TEST_F(Workers, TestValueIsNeverAFlag) {
    Test(3);
    EXPECT_EQ(doors.Calls().front(), "p1.TestBoard(B, 3)");
}

}  // namespace
}  // namespace oam::test
