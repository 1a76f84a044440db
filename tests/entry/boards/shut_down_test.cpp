// What happens to the boards, and to what is under way, when the service or its process ends.
#include <atomic>
#include <cstdlib>
#include <thread>

#include "elsewhere.h"
#include "operations.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::ExitedWithCode;
using ::testing::IsEmpty;
using ::testing::Values;

class ShutDown : public OperationTest {
  protected:
    void SetUp() override {
        OperationTest::SetUp();
        Configure("charlie", {{"AutoStop", "Yes"}});
        Configure("Alpha", {{"AutoStop", "Yes"}});
        Configure("Bravo", {{"AutoStop", "No"}});
    }
    void Enabled() {
        Settings({{"AutoStopEnabled", "Yes"}});
        StartQuietly();
    }
};

TEST_F(ShutDown, StopsTheMarkedBoardsBeforeThePluginsEnd) {
    Enabled();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi StopBoard(Alpha)", "rec.bpi StopBoard(charlie)",
                                     "rec.bpi Exit()"));
    for (const auto& call : recorder.Calls("StopBoard")) {
        EXPECT_EQ(call.thread, std::this_thread::get_id());
    }
}

TEST_F(ShutDown, TellsOfEveryBoardThatItStops) {
    Enabled();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(),
                ElementsAre(Said{OAMEVN_STOPBOARD_REQ, 0, "Alpha", "Stop board in 150ms."},
                            Said{kStop.done, 0, "Alpha", kStop.succeeded},
                            Said{OAMEVN_STOPBOARD_REQ, 0, "charlie", "Stop board in 150ms."},
                            Said{kStop.done, 0, "charlie", kStop.succeeded}));
}

TEST_F(ShutDown, LeavesBoardsAloneWhileTheSupervisorSaysNo) {
    StartQuietly();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi Exit()"));
    EXPECT_THAT(alerts.Heard(), IsEmpty());
}

TEST_F(ShutDown, StopsBoardsOnceHoweverOftenItIsAsked) {
    Enabled();
    EXPECT_EQ(_oamShutdown(), OAM_SUCCESS);
    recorder.Clear();
    EXPECT_EQ(_oamShutdown(), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

// The library's flag is down then, board communication's is still up.
TEST_F(ShutDown, RefusesQueriesButTakesRequestsWhileItStopsBoards) {
    Enabled();
    Numbers number = Are(0);
    oam_result unknown = OAM_SUCCESS;
    On(kStop, [&](const std::string& board) {
        number = NumberOf(board);
        unknown = _oamStartBoard("no such board", OAM_SYNCHRONIZED);
        return 0u;
    });
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(number, NoNumbers(OAMERR_SERVER_NOT_RUNNING));
    EXPECT_EQ(unknown, OAMERR_NOT_FOUND);
}

TEST_F(ShutDown, LetsThePluginReadTheDatabaseWhileItStopsBoards) {
    Enabled();
    std::vector<Answer> names;
    On(kStop, [&names](const std::string& board) {
        names.push_back(StoredKeywordOf(board, "Name"));
        return 0u;
    });
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(names, ElementsAre(Is("Alpha"), Is("charlie")));
}

TEST_F(ShutDown, RestartStopsTheMarkedBoardsToo) {
    Enabled();
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"StopBoard", "Exit", "Init"}),
                ElementsAre("rec.bpi StopBoard(Alpha)", "rec.bpi StopBoard(charlie)",
                            "rec.bpi Exit()", "rec.bpi Init(rec.bpi)"));
}

class UnderWay : public ShutDown, public testing::WithParamInterface<Operation> {};

TEST_P(UnderWay, IsNeitherWaitedForNorHarmedByTheEndOfTheService) {
    Enabled();
    const size_t threads = ThreadCount();
    Latch latch;
    HoldBack(GetParam(), "Bravo", latch);
    alerts.Clear();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(Outcomes(kStop, "Bravo").size(), 1u);
    EXPECT_EQ(Outcomes(kStop, "Bravo").at(0).severity, 2u);
    alerts.Clear();
    latch.Open();
    EXPECT_TRUE(WaitForThreads(threads));
    EXPECT_THAT(alerts.Heard(), IsEmpty());
}

TEST_P(UnderWay, DoesNotDisturbTheNextStart) {
    Enabled();
    const size_t threads = ThreadCount();
    Latch latch;
    HoldBack(GetParam(), "Bravo", latch);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    On(GetParam(), [](const std::string&) { return 0u; });
    alerts.Clear();
    latch.Open();
    EXPECT_TRUE(WaitForThreads(threads + 1));  // the second start waits for its automatic start
    EXPECT_TRUE(WaitUntilIdle("Bravo"));
    EXPECT_EQ(_oamStartBoard("Bravo", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(Outcomes(kStart, "Bravo").back(), (Said{kStart.done, 0, "Bravo", kStart.succeeded}));
}

TEST_P(UnderWay, ThePluginMayStillCallTheService) {
    Enabled();
    const size_t threads = ThreadCount();
    Latch latch;
    std::atomic<unsigned> answered{0};
    On(GetParam(), [&](const std::string& board) {
        if (board == "Bravo") {
            latch.Wait();
            answered = NumberOf(board).code;
            answered.notify_all();
        }
        return 0u;
    });
    ASSERT_EQ(GetParam().request("Bravo", 0), OAM_SUCCESS);
    ASSERT_TRUE(latch.WaitForArrival());
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    latch.Open();
    answered.wait(0);
    EXPECT_EQ(answered.load(), unsigned{OAMERR_SERVER_NOT_RUNNING});
    EXPECT_TRUE(WaitForThreads(threads));
}

INSTANTIATE_TEST_SUITE_P(Each, UnderWay, Values(kStart, kStop, kTest),
                         [](const auto& row) { return row.param.name; });

class ProcessEnd : public ShutDown {
  protected:
    // Boards that are started for longer than the process lives, and ask the service all the while.
    void KeepBoardsBusy() {
        On(kStart, [](const std::string& board) {
            const auto end = std::chrono::steady_clock::now() + kPatience;
            while (std::chrono::steady_clock::now() < end) {
                (void)NumberOf(board);
                (void)Raise(OAMEVN_TRACE, 0, board, "still here");
            }
            return 0u;
        });
        (void)_oamStartBoard(nullptr, 0);
        (void)recorder.WaitForCall("StartBoard", 3);
    }
};

TEST_F(ProcessEnd, MayComeWhileTheAutomaticStartStillWaits) {
    EXPECT_EXIT(
        {
            if (_oamInit() != OAM_SUCCESS) std::exit(1);
            std::exit(0);
        },
        ExitedWithCode(0), "");
}

TEST_F(ProcessEnd, MayComeRightAfterTheServicesEnd) {
    EXPECT_EXIT(
        {
            if (_oamInit() != OAM_SUCCESS) std::exit(1);
            if (_oamExit() != OAM_SUCCESS) std::exit(2);
            std::exit(0);
        },
        ExitedWithCode(0), "");
}

TEST_F(ProcessEnd, MayComeWhileBoardsAreBeingStarted) {
    EXPECT_EXIT(
        {
            if (_oamInit() != OAM_SUCCESS) std::exit(1);
            KeepBoardsBusy();
            std::exit(0);
        },
        ExitedWithCode(0), "");
}

TEST_F(ProcessEnd, MayComeAfterTheServicesEndWhileBoardsAreBeingStarted) {
    EXPECT_EXIT(
        {
            if (_oamInit() != OAM_SUCCESS) std::exit(1);
            KeepBoardsBusy();
            if (_oamExit() != OAM_SUCCESS) std::exit(2);
            std::exit(0);
        },
        ExitedWithCode(0), "");
}

}  // namespace

}  // namespace oam::test
