// The automatic start: five seconds after each start of the service, for the boards marked for it.
#include <chrono>

#include "elsewhere.h"
#include "operations.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kDelay{5};
// An automatic start that comes at all has come by then.
constexpr std::chrono::seconds kOver{7};

class AutomaticStart : public OperationTest {
  protected:
    void SetUp() override {
        OperationTest::SetUp();
        Configure("One", {{"AutoStart", "Yes"}});
        Configure("Two", {{"AutoStart", "Yes"}});
        Configure("Unmarked", {{"AutoStart", "No"}});
    }
    // Nothing tells that there was no start.
    void LetTheTimePass() { std::this_thread::sleep_until(started_ + kOver); }
    // Time for two starts, and for more than these.
    void LetTwoStartsPass() {
        EXPECT_TRUE(recorder.WaitForCall("StartBoard", 2));
        LetTheTimePass();
    }
    void StartNow() {
        started_ = Clock::now();
        Start();
    }
    std::vector<std::string> Started() const { return recorder.Lines({"StartBoard"}); }

    Clock::time_point started_;
};

TEST_F(AutomaticStart, ComesFiveSecondsAfterTheStart) {
    Settings({{"AutoStartEnabled", "Yes"}});
    StartNow();
    ASSERT_TRUE(recorder.WaitForCall("StartBoard", 2));
    EXPECT_GE(Clock::now() - started_, kDelay);
    EXPECT_TRUE(alerts.WaitForCode(kStart.done, 2));
    EXPECT_THAT(alerts.Heard(kStart.done),
                UnorderedElementsAre(Said{kStart.done, 0, "One", kStart.succeeded},
                                     Said{kStart.done, 0, "Two", kStart.succeeded}));
}

TEST_F(AutomaticStart, LeavesUnmarkedBoardsAlone) {
    Settings({{"AutoStartEnabled", "Yes"}});
    StartNow();
    LetTwoStartsPass();
    EXPECT_THAT(Started(),
                UnorderedElementsAre("rec.bpi StartBoard(One)", "rec.bpi StartBoard(Two)"));
    EXPECT_THAT(Outcomes(kStart, "Unmarked"), IsEmpty());
}

TEST_F(AutomaticStart, DoesNotComeWhileTheSupervisorSaysNo) {
    StartNow();
    LetTheTimePass();
    EXPECT_THAT(Started(), IsEmpty());
    EXPECT_THAT(alerts.Heard(kStart.done), IsEmpty());
}

TEST_F(AutomaticStart, RunsEachBoardOnAThreadOfItsOwn) {
    Settings({{"AutoStartEnabled", "Yes"}});
    Latch latch;
    On(kStart, [&latch](const std::string&) {
        latch.Wait();
        return 0u;
    });
    StartNow();
    EXPECT_TRUE(latch.WaitForArrival(2));
    const auto calls = recorder.Calls("StartBoard");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_NE(calls[0].thread, calls[1].thread);
    latch.Open();
    EXPECT_TRUE(alerts.WaitForCode(kStart.done, 2));
}

TEST_F(AutomaticStart, RunsOneBoardAfterAnotherWhenSynchronized) {
    Settings({{"AutoStartEnabled", "Yes"}, {"SynchronizeEnabled", "Yes"}});
    StartNow();
    ASSERT_TRUE(alerts.WaitForCode(kStart.done, 2));
    EXPECT_THAT(Started(), ElementsAre("rec.bpi StartBoard(One)", "rec.bpi StartBoard(Two)"));
    const auto calls = recorder.Calls("StartBoard");
    EXPECT_EQ(calls.at(0).thread, calls.at(1).thread);
    EXPECT_NE(calls.at(0).thread, std::this_thread::get_id());
}

TEST_F(AutomaticStart, GoesByTheSettingsOfItsMoment) {
    StartNow();
    EXPECT_EQ(Change("Supervisor", "AutoStartEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(Change("Two", "AutoStart", "No"), OAM_SUCCESS);
    EXPECT_EQ(Change("Unmarked", "AutoStart", "Yes"), OAM_SUCCESS);
    LetTwoStartsPass();
    EXPECT_THAT(Started(),
                UnorderedElementsAre("rec.bpi StartBoard(One)", "rec.bpi StartBoard(Unmarked)"));
}

TEST_F(AutomaticStart, DoesNotComeAfterTheServicesEnd) {
    Settings({{"AutoStartEnabled", "Yes"}});
    StartNow();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    LetTheTimePass();
    EXPECT_THAT(Started(), IsEmpty());
}

TEST_F(AutomaticStart, ComesOnceAfterARestartAndFromTheNewStart) {
    Settings({{"AutoStartEnabled", "Yes"}});
    StartNow();
    std::this_thread::sleep_for(std::chrono::seconds(2));  // well within the first start's wait
    started_ = Clock::now();
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    ASSERT_TRUE(recorder.WaitForCall("StartBoard"));
    EXPECT_GE(Clock::now() - started_, kDelay);
    LetTwoStartsPass();
    EXPECT_THAT(Started(),
                UnorderedElementsAre("rec.bpi StartBoard(One)", "rec.bpi StartBoard(Two)"));
}

TEST_F(AutomaticStart, ComesOnceAfterSeveralRestarts) {
    Settings({{"AutoStartEnabled", "Yes"}});
    StartNow();
    for (int i = 0; i < 5; ++i) EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    started_ = Clock::now();
    LetTwoStartsPass();
    EXPECT_THAT(Started(),
                UnorderedElementsAre("rec.bpi StartBoard(One)", "rec.bpi StartBoard(Two)"));
}

TEST_F(AutomaticStart, ComesAgainAfterEveryStart) {
    Settings({{"AutoStartEnabled", "Yes"}});
    StartNow();
    ASSERT_TRUE(alerts.WaitForCode(kStart.done, 2));
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    StartNow();
    EXPECT_TRUE(recorder.WaitForCall("StartBoard", 4));
    EXPECT_TRUE(alerts.WaitForCode(kStart.done, 4));
}

TEST_F(AutomaticStart, DoesNotDelayTheStartOfTheService) {
    Settings({{"AutoStartEnabled", "Yes"}});
    StartNow();
    EXPECT_TRUE(g_bOamIsRunning);
    EXPECT_THAT(Started(), IsEmpty());
}

TEST_F(AutomaticStart, IsRefusedByABoardThatIsBusy) {
    Settings({{"AutoStartEnabled", "Yes"}});
    StartNow();
    Latch latch;
    HoldBack(kTest, "One", latch);
    ASSERT_TRUE(alerts.WaitForCode(kStart.done, 2));
    EXPECT_EQ(Outcomes(kStart, "One").at(0).severity, 2u);
    EXPECT_EQ(Outcomes(kStart, "Two").at(0).severity, 0u);
    LetGo(kTest, "One", latch);
}

TEST_F(AutomaticStart, SurvivesThatItsThreadCannotBeMade) {
    Settings({{"AutoStartEnabled", "Yes"}});
    const NoNewThreads none;
    StartNow();
    EXPECT_EQ(_oamStartBoard("One", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(Started(), ElementsAre("rec.bpi StartBoard(One)"));
}

}  // namespace

}  // namespace oam::test
