// The automatic flag: which boards a request then reaches, and what it says of the others.
#include "operations.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr unsigned kAutomaticNow = OAM_AUTOMATIC | OAM_SYNCHRONIZED;

// Two boards, the first marked for automatic start and stop.
class AutomaticRequest : public OperationTest {
  protected:
    void SetUp() override {
        OperationTest::SetUp();
        Configure("Marked", {{"AutoStart", "Yes"}, {"AutoStop", "Yes"}});
        Configure("Unmarked", {{"AutoStart", "No"}, {"AutoStop", "No"}});
    }
    void Enabled() {
        Settings({{"AutoStartEnabled", "Yes"}, {"AutoStopEnabled", "Yes"}});
        StartQuietly();
    }
};

TEST_F(AutomaticRequest, StartsTheMarkedBoardsOnly) {
    Enabled();
    EXPECT_EQ(_oamStartBoard(nullptr, kAutomaticNow), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi StartBoard(Marked)"));
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{kStart.done, 0, "Marked", kStart.succeeded}));
}

TEST_F(AutomaticRequest, StopsTheMarkedBoardsOnly) {
    Enabled();
    EXPECT_EQ(_oamStopBoard(nullptr, kAutomaticNow), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi StopBoard(Marked)"));
    EXPECT_THAT(alerts.Heard(),
                ElementsAre(Said{OAMEVN_STOPBOARD_REQ, 0, "Marked", "Stop board in 150ms."},
                            Said{kStop.done, 0, "Marked", kStop.succeeded}));
}

TEST_F(AutomaticRequest, RunsOnThreadsWithoutTheSynchronizedFlag) {
    Enabled();
    EXPECT_EQ(_oamStartBoard(nullptr, OAM_AUTOMATIC), OAM_SUCCESS);
    ASSERT_TRUE(alerts.WaitForCode(kStart.done));
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi StartBoard(Marked)"));
    EXPECT_NE(recorder.Calls("StartBoard").at(0).thread, std::this_thread::get_id());
}

TEST_F(AutomaticRequest, HoldsForANamedBoardToo) {
    Enabled();
    EXPECT_EQ(_oamStartBoard("Unmarked", kAutomaticNow), OAM_SUCCESS);
    EXPECT_EQ(_oamStopBoard("Unmarked", kAutomaticNow), OAM_SUCCESS);
    EXPECT_THAT(Asked(), IsEmpty());
    EXPECT_THAT(alerts.Heard(), IsEmpty());
    EXPECT_EQ(_oamStartBoard("Marked", kAutomaticNow), OAM_SUCCESS);
    EXPECT_EQ(_oamStopBoard("Marked", kAutomaticNow), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi StartBoard(Marked)", "rec.bpi StopBoard(Marked)"));
}

TEST_F(AutomaticRequest, DoesNothingWhileTheSupervisorSaysNo) {
    StartQuietly();
    EXPECT_EQ(_oamStartBoard(nullptr, kAutomaticNow), OAM_SUCCESS);
    EXPECT_EQ(_oamStopBoard(nullptr, kAutomaticNow), OAM_SUCCESS);
    EXPECT_THAT(Asked(), IsEmpty());
    EXPECT_THAT(alerts.Heard(), IsEmpty());
}

TEST_F(AutomaticRequest, FollowsTheTwoSettingsApart) {
    Settings({{"AutoStartEnabled", "Yes"}});
    StartQuietly();
    EXPECT_EQ(_oamStartBoard(nullptr, kAutomaticNow), OAM_SUCCESS);
    EXPECT_EQ(_oamStopBoard(nullptr, kAutomaticNow), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi StartBoard(Marked)"));
    EXPECT_EQ(Change("Supervisor", "AutoStartEnabled", "No"), OAM_SUCCESS);
    EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    recorder.Clear();
    EXPECT_EQ(_oamStartBoard(nullptr, kAutomaticNow), OAM_SUCCESS);
    EXPECT_EQ(_oamStopBoard(nullptr, kAutomaticNow), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi StopBoard(Marked)"));
}

TEST_F(AutomaticRequest, FollowsTheBoardsMarks) {
    Enabled();
    EXPECT_EQ(Change("Marked", "AutoStart", "No"), OAM_SUCCESS);
    EXPECT_EQ(Change("Unmarked", "AutoStart", "yes"), OAM_SUCCESS);
    recorder.Clear();
    EXPECT_EQ(_oamStartBoard(nullptr, kAutomaticNow), OAM_SUCCESS);
    EXPECT_EQ(_oamStopBoard(nullptr, kAutomaticNow), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi StartBoard(Unmarked)", "rec.bpi StopBoard(Marked)"));
}

TEST_F(AutomaticRequest, IsNoPartOfAnOrdinaryRequest) {
    StartQuietly();
    EXPECT_EQ(_oamStartBoard("Unmarked", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(_oamStopBoard("Unmarked", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(Asked(),
                ElementsAre("rec.bpi StartBoard(Unmarked)", "rec.bpi StopBoard(Unmarked)"));
}

TEST_F(AutomaticRequest, IsNoPartOfATest) {
    StartQuietly();
    EXPECT_EQ(_oamTestBoard("Unmarked", OAM_AUTOMATIC), OAM_SUCCESS);
    ASSERT_TRUE(alerts.WaitForCode(kTest.done));
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi TestBoard(Unmarked, 1)"));
}

// A start looks at the marks first, a stop at the state.
TEST_F(AutomaticRequest, OfAStartPassesABusyUnmarkedBoardInSilence) {
    Enabled();
    Latch latch;
    HoldBack(kTest, "Unmarked", latch);
    EXPECT_EQ(_oamStartBoard("Unmarked", kAutomaticNow), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), IsEmpty());
    LetGo(kTest, "Unmarked", latch);
}

TEST_F(AutomaticRequest, OfAStopIsRefusedAloudByABusyUnmarkedBoard) {
    Enabled();
    Latch latch;
    HoldBack(kTest, "Unmarked", latch);
    EXPECT_EQ(_oamStopBoard("Unmarked", kAutomaticNow), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{kStop.done, 2, "Unmarked",
                                                 "Board is currently being tested. Wait for the "
                                                 "OAMEVN_TESTBOARD_DONE before stopping it"}));
    LetGo(kTest, "Unmarked", latch);
}

TEST_F(AutomaticRequest, OfAStartIsRefusedAloudByABusyMarkedBoard) {
    Enabled();
    Latch latch;
    HoldBack(kTest, "Marked", latch);
    EXPECT_EQ(_oamStartBoard("Marked", kAutomaticNow), OAM_SUCCESS);
    EXPECT_EQ(Outcomes(kStart, "Marked").size(), 1u);
    EXPECT_EQ(Outcomes(kStart, "Marked").at(0).severity, 2u);
    LetGo(kTest, "Marked", latch);
}

TEST_F(AutomaticRequest, OfAStopLeavesAnUnmarkedBoardIdle) {
    Enabled();
    EXPECT_EQ(_oamStopBoard("Unmarked", kAutomaticNow), OAM_SUCCESS);
    EXPECT_EQ(_oamStartBoard("Unmarked", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{kStart.done, 0, "Unmarked", kStart.succeeded}));
}

}  // namespace

}  // namespace oam::test
