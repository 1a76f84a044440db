// Starting, stopping and testing one board: its outcomes, its threads and its way back to idle.
#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "elsewhere.h"
#include "operations.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Values;

constexpr const char* kBoard = "Board A";

class OneBoard : public OperationTest {
  protected:
    void SetUp() override {
        OperationTest::SetUp();
        Configure(kBoard, {{"Location.PCI.Bus", "0"}});
        Configure("Board B", {{"Location.PCI.Bus", "0"}});
    }
};

class AnyOperation : public OneBoard, public testing::WithParamInterface<Operation> {
  protected:
    const Operation& Row() const { return GetParam(); }
    // What is told of a whole operation with this outcome.
    std::vector<Said> Whole(unsigned severity, const std::string& text) const {
        std::vector<Said> told;
        if (Row().done == kStop.done) {
            told.push_back({OAMEVN_STOPBOARD_REQ, 0, kBoard, "Stop board in 150ms."});
        }
        told.push_back({Row().done, severity, kBoard, text});
        return told;
    }
    void Run() {
        ASSERT_EQ(Row().request(kBoard, 0), OAM_SUCCESS);
        ASSERT_TRUE(alerts.WaitForCode(Row().done));
    }
};

TEST_P(AnyOperation, NeedsBoardCommunication) {
    EXPECT_EQ(Row().request(kBoard, 0), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(Row().request(nullptr, 0), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(Row().request("no such board", 0), OAMERR_SERVER_NOT_RUNNING);
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(Row().request(kBoard, 0), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(recorder.Count(Row().entry), 0u);
}

TEST_P(AnyOperation, RefusesAnUnknownBoard) {
    StartQuietly();
    EXPECT_EQ(Row().request("no such board", 0), OAMERR_NOT_FOUND);
    EXPECT_EQ(Row().request("", 0), OAMERR_NOT_FOUND);
    EXPECT_EQ(Row().request("Supervisor", 0), OAMERR_NOT_FOUND);
    EXPECT_THAT(alerts.Heard(), IsEmpty());
}

TEST_P(AnyOperation, TellsItsSuccess) {
    StartQuietly();
    Run();
    EXPECT_EQ(alerts.Heard(), Whole(0, Row().succeeded));
    EXPECT_EQ(recorder.Count(Row().entry), 1u);
    EXPECT_EQ(recorder.Calls(Row().entry).at(0).arguments.at(0), kBoard);
}

TEST_P(AnyOperation, TellsItsFailureWhateverTheCode) {
    StartQuietly();
    On(Row(), [](const std::string&) { return 0x81u; });
    Run();
    EXPECT_EQ(alerts.Heard(), Whole(2, Row().failed));
}

TEST_P(AnyOperation, FailsWhenThePluginThrows) {
    StartQuietly();
    On(Row(), [](const std::string&) -> unsigned { throw std::runtime_error("refused"); });
    Run();
    EXPECT_EQ(alerts.Heard(), Whole(2, Row().failed));
}

TEST_P(AnyOperation, RunsOnAThreadOfItsOwn) {
    StartQuietly();
    Run();
    EXPECT_NE(recorder.Calls(Row().entry).at(0).thread, std::this_thread::get_id());
    EXPECT_EQ(alerts.All().back().thread, recorder.Calls(Row().entry).at(0).thread);
}

TEST_P(AnyOperation, IsAnsweredBeforeItIsDone) {
    StartQuietly();
    Latch latch;
    HoldBack(Row(), kBoard, latch);
    EXPECT_THAT(Outcomes(Row(), kBoard), IsEmpty());
    LetGo(Row(), kBoard, latch);
}

TEST_P(AnyOperation, LeavesTheTableFreeWhileThePluginWorks) {
    StartQuietly();
    Latch latch;
    HoldBack(Row(), kBoard, latch);
    EXPECT_EQ(ByNumber(0), Is(kBoard));
    EXPECT_EQ(Change("Board B", "Location.PCI.Bus", "4"), OAM_SUCCESS);
    EXPECT_EQ(Change(kBoard, "Location.PCI.Bus", "5"), OAM_SUCCESS);
    EXPECT_EQ(BusSlotOf(kBoard), Are(5, 0));
    LetGo(Row(), kBoard, latch);
}

TEST_P(AnyOperation, LeavesOtherBoardsFree) {
    StartQuietly();
    Latch latch;
    On(Row(), [&latch](const std::string& board) {
        if (board == kBoard) latch.Wait();
        return 0u;
    });
    ASSERT_EQ(Row().request(kBoard, 0), OAM_SUCCESS);
    ASSERT_TRUE(latch.WaitForArrival());
    ASSERT_EQ(Row().request("Board B", 0), OAM_SUCCESS);
    EXPECT_TRUE(alerts.WaitForCode(Row().done, 1, "Board B"));
    EXPECT_THAT(Outcomes(Row(), "Board B"),
                ElementsAre(Said{Row().done, 0, "Board B", Row().succeeded}));
    LetGo(Row(), kBoard, latch);
}

TEST_P(AnyOperation, MayBeRepeatedWhenItIsDone) {
    StartQuietly();
    Run();
    ASSERT_TRUE(WaitUntilIdle(kBoard));
    alerts.Clear();
    Run();
    EXPECT_EQ(alerts.Heard(), Whole(0, Row().succeeded));
}

TEST_P(AnyOperation, MayBeRepeatedAfterAFailure) {
    StartQuietly();
    On(Row(), [](const std::string&) { return 0x81u; });
    Run();
    ASSERT_TRUE(WaitUntilIdle(kBoard));
    alerts.Clear();
    On(Row(), [](const std::string&) { return 0u; });
    Run();
    EXPECT_EQ(alerts.Heard(), Whole(0, Row().succeeded));
}

// The board is idle only when its outcome has been told to everybody.
TEST_P(AnyOperation, IsStillInProgressWhileItsOutcomeIsTold) {
    StartQuietly();
    bool asked = false;
    alerts.AnswerWith([&](const Alert& alert) {
        if (!asked && alert.client == kServer && alert.code == Row().done && alert.severity == 0) {
            asked = true;
            EXPECT_EQ(_oamStartBoard(kBoard, OAM_SYNCHRONIZED), OAM_SUCCESS);
        }
        return 0u;
    });
    ASSERT_EQ(Row().request(kBoard, 0), OAM_SUCCESS);
    ASSERT_TRUE(alerts.WaitFor([](const std::vector<Alert>& all) {
        return std::any_of(all.begin(), all.end(), [](const Alert& alert) {
            return alert.code == OAMEVN_STARTBOARD_DONE && alert.severity == 2;
        });
    }));
    ASSERT_TRUE(WaitUntilIdle(kBoard));
}

TEST_P(AnyOperation, AcceptsTheNameInAnyCase) {
    StartQuietly();
    ASSERT_EQ(Row().request("BOARD a", 0), OAM_SUCCESS);
    ASSERT_TRUE(alerts.WaitForCode(Row().done));
    EXPECT_EQ(alerts.Heard(Row().done).at(0).severity, 0u);
}

TEST_P(AnyOperation, EndsQuietlyWhenItsBoardIsDeletedMeanwhile) {
    StartQuietly();
    const size_t threads = ThreadCount();
    Latch latch;
    HoldBack(Row(), kBoard, latch);
    EXPECT_EQ(_oamDeleteBoard(kBoard), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("Board B"));
    LetGo(Row(), kBoard, latch);
    EXPECT_TRUE(WaitForThreads(threads));
    EXPECT_THAT(BoardNames(), ElementsAre("Board B"));
}

TEST_P(AnyOperation, LeavesABoardThatWasRenamedMeanwhileIdleUnderItsNewName) {
    StartQuietly();
    Latch latch;
    HoldBack(Row(), kBoard, latch);
    EXPECT_EQ(Change(kBoard, "Name", "Renamed"), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("Board B", "Renamed"));
    latch.Open();
    ASSERT_TRUE(alerts.WaitForCode(Row().done));
    EXPECT_TRUE(WaitUntilIdle("Renamed"));
    alerts.Clear();
    EXPECT_EQ(_oamStartBoard("Renamed", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(kStart.done),
                ElementsAre(Said{kStart.done, 0, "Renamed", kStart.succeeded}));
}

TEST_P(AnyOperation, IsStillRefusedUnderTheNewNameUntilItIsDone) {
    StartQuietly();
    Latch latch;
    HoldBack(Row(), kBoard, latch);
    EXPECT_EQ(Change(kBoard, "Name", "Renamed"), OAM_SUCCESS);
    EXPECT_EQ(_oamStartBoard(kBoard, OAM_SYNCHRONIZED), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamStartBoard("Renamed", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(Outcomes(kStart, "Renamed").at(0).severity, 2u);
    latch.Open();
    EXPECT_TRUE(WaitUntilIdle("Renamed"));
}

TEST_P(AnyOperation, GoesToThePluginOfTheBoard) {
    AddPluginFor("other.bpi", {"Other"});
    Configure("Board O", {{"Product", "Other"}});
    StartQuietly();
    ASSERT_EQ(Row().request("Board O", 0), OAM_SUCCESS);
    ASSERT_TRUE(alerts.WaitForCode(Row().done));
    ASSERT_EQ(recorder.Count(Row().entry), 1u);
    EXPECT_EQ(recorder.Calls(Row().entry).at(0).file, "other.bpi");
}

TEST_P(AnyOperation, IsRefusedWithoutAThread) {
    StartQuietly();
    const NoNewThreads none;
    EXPECT_EQ(Row().request(kBoard, 0), OAMERR_CANT_CREATE_THREAD);
    EXPECT_EQ(Row().request(nullptr, 0), OAMERR_CANT_CREATE_THREAD);
    EXPECT_THAT(alerts.Heard(), IsEmpty());
    EXPECT_EQ(recorder.Count(Row().entry), 0u);
    EXPECT_TRUE(WaitUntilIdle(kBoard));
}

INSTANTIATE_TEST_SUITE_P(Each, AnyOperation, Values(kStart, kStop, kTest),
                         [](const auto& row) { return row.param.name; });

TEST_F(OneBoard, IsStoppedAtLeast150MillisecondsAfterTheNotice) {
    StartQuietly();
    using Clock = std::chrono::steady_clock;
    Clock::time_point announced;
    Clock::time_point stopped;
    alerts.AnswerWith([&](const Alert& alert) {
        if (alert.client == kServer && alert.code == OAMEVN_STOPBOARD_REQ) announced = Clock::now();
        return 0u;
    });
    On(kStop, [&](const std::string&) {
        stopped = Clock::now();
        return 0u;
    });
    EXPECT_EQ(_oamStopBoard(kBoard, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_NE(announced, Clock::time_point{});
    EXPECT_GE(stopped - announced, std::chrono::milliseconds(150));
}

TEST_F(OneBoard, IsAnnouncedAndStoppedInThisOrder) {
    StartQuietly();
    On(kStop, [this](const std::string&) {
        EXPECT_THAT(alerts.Heard(),
                    ElementsAre(Said{OAMEVN_STOPBOARD_REQ, 0, kBoard, "Stop board in 150ms."}));
        return 0u;
    });
    EXPECT_EQ(_oamStopBoard(kBoard, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(alerts.Heard().size(), 2u);
}

TEST_F(OneBoard, IsTestedWithTheValueAsItIs) {
    StartQuietly();
    for (unsigned value : {0u, 1u, 2u, 3u, 0xFFFFFFFFu}) {
        recorder.Clear();
        ASSERT_EQ(_oamTestBoard(kBoard, value), OAM_SUCCESS);
        ASSERT_TRUE(alerts.WaitForCode(kTest.done));
        EXPECT_THAT(recorder.Lines({"TestBoard"}),
                    ElementsAre("rec.bpi TestBoard(Board A, " + std::to_string(value) + ")"));
        EXPECT_NE(recorder.Calls("TestBoard").at(0).thread, std::this_thread::get_id());
        ASSERT_TRUE(WaitUntilIdle(kBoard));
        alerts.Clear();
    }
}

TEST_F(OneBoard, MayHaveANameThatLooksLikeAFormat) {
    Configure("100%s %n");
    StartQuietly();
    EXPECT_EQ(_oamStartBoard("100%s %n", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(),
                ElementsAre(Said{kStart.done, 0, "100%s %n", "Board is started.\n"}));
}

TEST_F(OneBoard, IsReportedToThePluginsToo) {
    StartQuietly();
    EXPECT_EQ(_oamStartBoard(kBoard, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"StartBoard", "AlertReceive"}),
                ElementsAre("rec.bpi StartBoard(Board A)",
                            "rec.bpi AlertReceive(" + std::to_string(OAMEVN_STARTBOARD_DONE) +
                                ", Board A, Board is started.\n)"));
}

}  // namespace

}  // namespace oam::test
