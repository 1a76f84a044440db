#include "simulated_board.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

#include "sim_codes.h"
#include "waiting.h"

namespace oam::sim {
namespace {

using namespace std::chrono_literals;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr Thresholds kThresholds = {
    .temperatureWarning = 700, .temperatureAlert = 850, .fanWarning = 1500};
constexpr OperationDefault kAtOnce;
constexpr OperationDefault kForEver = {.time = 1h};

BoardPlan plan() {
    BoardPlan plan;
    plan.name = "Left";
    plan.product = "E1";
    plan.location = {1, 2};
    plan.serial = "S1";
    return plan;
}

class SimulatedBoardTest : public ::testing::Test {
  protected:
    RunState State() {
        BoardStatus status;
        EXPECT_EQ(board_.Read(&status), OAM_SUCCESS);
        return status.state;
    }

    // An operation that is under way on a thread of its own.
    std::future<oam_result> Begin(Operation operation, RunState during) {
        auto result =
            std::async(std::launch::async, [=, this] { return board_.Run(operation, kForEver); });
        EXPECT_TRUE(becomesTrue([&] { return State() == during; }));
        return result;
    }

    SimulatedBoard board_{plan(), kThresholds};
};

TEST_F(SimulatedBoardTest, RunsAndStops) {
    EXPECT_EQ(State(), RunState::Stopped);
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAM_SUCCESS);
    EXPECT_EQ(State(), RunState::Running);
    EXPECT_EQ(board_.Run(Operation::Stop, kAtOnce), OAM_SUCCESS);
    EXPECT_EQ(State(), RunState::Stopped);
}

TEST_F(SimulatedBoardTest, StopsAtOnceWhenItIsStopped) {
    EXPECT_EQ(board_.Run(Operation::Stop, {.time = 1h, .result = OAM_REASON_FAILED}), OAM_SUCCESS);
}

TEST_F(SimulatedBoardTest, TakesTheUsualTimeUnlessTheFileSaysOtherwise) {
    const auto begin = Clock::now();
    EXPECT_EQ(board_.Run(Operation::Start, {.time = 20ms}), OAM_SUCCESS);
    EXPECT_GE(Clock::now() - begin, 20ms);
    auto quick = plan();
    quick.times[Operation::Start] = 0ms;
    ASSERT_TRUE(board_.Adopt(quick));
    EXPECT_EQ(board_.Run(Operation::Start, kForEver), OAM_SUCCESS);
}

TEST_F(SimulatedBoardTest, EndsAsTheScriptSaysAndThenAsTheLastOutcome) {
    auto scripted = plan();
    scripted.scripts[Operation::Start] = *OutcomeScript::Parse("fail, hang 1ms, code 0x77, ok");
    ASSERT_TRUE(board_.Adopt(scripted));
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAMERR_START_BOARD_FAIL);
    EXPECT_EQ(State(), RunState::Failed);
    EXPECT_EQ(board_.Run(Operation::Start, kForEver), SIM_NO_ANSWER);
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), oam_result{0x77});
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAM_SUCCESS);
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAM_SUCCESS);
}

TEST_F(SimulatedBoardTest, EndsAsUsualWithoutAScript) {
    EXPECT_EQ(board_.Run(Operation::Test, {.result = OAMERR_BOARD_SELFTEST_INVALID}),
              OAMERR_BOARD_SELFTEST_INVALID);
}

TEST_F(SimulatedBoardTest, FailsTheNextOperationsBeforeItsScriptGoesOn) {
    board_.FailNext(Operation::Test, 2);
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAM_SUCCESS);
    EXPECT_EQ(board_.Run(Operation::Test, kAtOnce), OAMERR_BOARD_SELFTEST_FAIL);
    EXPECT_EQ(board_.Run(Operation::Test, kAtOnce), OAMERR_BOARD_SELFTEST_FAIL);
    EXPECT_EQ(board_.Run(Operation::Test, kAtOnce), OAM_SUCCESS);
}

TEST_F(SimulatedBoardTest, IsAsBeforeAfterATest) {
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAM_SUCCESS);
    EXPECT_EQ(board_.Run(Operation::Test, {.result = OAM_REASON_FAILED}), OAM_REASON_FAILED);
    EXPECT_EQ(State(), RunState::Running);
}

TEST_F(SimulatedBoardTest, RefusesASecondOperation) {
    auto first = Begin(Operation::Test, RunState::Testing);
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), SIM_BOARD_BUSY);
    board_.End();
    EXPECT_EQ(first.get(), SIM_ENDING);
}

TEST_F(SimulatedBoardTest, GivesUpAtOnceWhenItIsPulled) {
    auto start = Begin(Operation::Start, RunState::Starting);
    EXPECT_THAT(board_.Remove(), IsEmpty());
    EXPECT_EQ(start.get(), SIM_BOARD_NOT_IN_SLOT);
    BoardStatus status;
    EXPECT_EQ(board_.Read(&status), SIM_BOARD_NOT_IN_SLOT);
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), SIM_BOARD_NOT_IN_SLOT);
    board_.Insert();
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAM_SUCCESS);
}

TEST_F(SimulatedBoardTest, IsMissedWhenItIsPulledWhileItRuns) {
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAM_SUCCESS);
    const auto events = board_.Remove();
    ASSERT_THAT(events, SizeIs(1));
    EXPECT_EQ(events[0].code, OAMEVN_BOARD_DEAD);
    EXPECT_EQ(events[0].location, (Location{1, 2}));
}

TEST_F(SimulatedBoardTest, AnswersNothingWhenDeadUntilItIsInsertedAgain) {
    auto test = Begin(Operation::Test, RunState::Testing);
    EXPECT_THAT(board_.Die(), SizeIs(1));
    EXPECT_EQ(test.get(), SIM_BOARD_DEAD);
    EXPECT_THAT(board_.Die(), IsEmpty());
    EXPECT_EQ(State(), RunState::Failed);
    EXPECT_EQ(board_.Run(Operation::Stop, kAtOnce), SIM_BOARD_DEAD);
    board_.Insert();
    EXPECT_EQ(State(), RunState::Stopped);
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAM_SUCCESS);
}

TEST_F(SimulatedBoardTest, IsNotDisturbedByBeingInsertedWhenItIsThere) {
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAM_SUCCESS);
    board_.Insert();
    EXPECT_EQ(State(), RunState::Running);
}

TEST_F(SimulatedBoardTest, StopsWhateverItDoesWhenItIsReset) {
    auto test = Begin(Operation::Test, RunState::Testing);
    board_.Reset();
    EXPECT_EQ(test.get(), SIM_BOARD_NOT_IN_SLOT);
    EXPECT_EQ(State(), RunState::Stopped);
}

TEST_F(SimulatedBoardTest, BeginsNothingAfterTheEnd) {
    board_.End();
    EXPECT_EQ(board_.Run(Operation::Start, kForEver), SIM_ENDING);
}

TEST_F(SimulatedBoardTest, IsNotTheBoardOfAnotherProductOrSerialNumber) {
    auto other = plan();
    other.product = "IP";
    EXPECT_FALSE(board_.Adopt(other));
    other = plan();
    other.serial = "S2";
    EXPECT_FALSE(board_.Adopt(other));
    other = plan();
    other.name = "Right";
    EXPECT_TRUE(board_.Adopt(other));
    EXPECT_EQ(board_.Plan().name, "Right");
}

TEST_F(SimulatedBoardTest, GoesOnInAScriptThatIsReadAgainUnchanged) {
    auto scripted = plan();
    scripted.scripts[Operation::Start] = *OutcomeScript::Parse("fail, ok");
    ASSERT_TRUE(board_.Adopt(scripted));
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAMERR_START_BOARD_FAIL);
    ASSERT_TRUE(board_.Adopt(scripted));
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAM_SUCCESS);
    scripted.scripts[Operation::Start] = *OutcomeScript::Parse("fail");
    ASSERT_TRUE(board_.Adopt(scripted));
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAMERR_START_BOARD_FAIL);
}

TEST_F(SimulatedBoardTest, FollowsItsCurvesWhileItRuns) {
    auto hot = plan();
    hot.temperature = *Curve::Parse("350, 720 after 10s, 900 after 20s", 0, 2000);
    hot.fan = *Curve::Parse("3000, 100 after 15s", 0, 9000);
    ASSERT_TRUE(board_.Adopt(hot));
    EXPECT_FALSE(board_.NextStep(Clock::now()));
    EXPECT_THAT(board_.Look(Clock::now() + 1h), IsEmpty());

    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAM_SUCCESS);
    const auto now = Clock::now();
    const auto first = board_.NextStep(now);
    ASSERT_TRUE(first);
    EXPECT_LE(*first, now + 10s);
    EXPECT_THAT(board_.Look(*first - 1ms), IsEmpty());
    EXPECT_THAT(board_.Look(*first), SizeIs(1));
    EXPECT_EQ(board_.NextStep(*first), *first + 5s);
    EXPECT_THAT(board_.Look(*first + 5s), SizeIs(1));
    EXPECT_THAT(board_.Look(*first + 10s), SizeIs(1));
    EXPECT_FALSE(board_.NextStep(*first + 10s));
}

TEST_F(SimulatedBoardTest, KeepsAReadingSetByHandUntilTheNextStart) {
    board_.SetTemperature(900);
    board_.SetFan(10);
    BoardStatus status;
    EXPECT_EQ(board_.Read(&status), OAM_SUCCESS);
    EXPECT_EQ(status.readings.temperature, 900);
    EXPECT_EQ(status.readings.fan, 10);
    EXPECT_THAT(board_.Look(Clock::now()), SizeIs(2));
    EXPECT_EQ(board_.Run(Operation::Start, kAtOnce), OAM_SUCCESS);
    EXPECT_EQ(board_.Read(&status), OAM_SUCCESS);
    EXPECT_EQ(status.readings.temperature, 350);
    EXPECT_EQ(status.readings.fan, 3000);
}

TEST_F(SimulatedBoardTest, JudgesReadingsByItsThresholds) {
    board_.SetThresholds({.temperatureWarning = 100, .temperatureAlert = 200, .fanWarning = 5000});
    EXPECT_THAT(board_.Look(Clock::now()), SizeIs(2));
}

}  // namespace
}  // namespace oam::sim
