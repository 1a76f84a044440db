#include "chassis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sim_codes.h"

namespace oam::sim {
namespace {

using namespace std::chrono_literals;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr Thresholds kThresholds = {
    .temperatureWarning = 700, .temperatureAlert = 850, .fanWarning = 1500};

BoardPlan plan(const std::string& name, unsigned int slot) {
    BoardPlan plan;
    plan.name = name;
    plan.product = "E1";
    plan.location = {1, slot};
    plan.serial = name;
    return plan;
}

TEST(Chassis, HasTheBoardsThatWereLoadedInTheOrderOfTheirPlaces) {
    Chassis chassis;
    EXPECT_THAT(chassis.Load({plan("B", 3), plan("A", 2)}, kThresholds), IsEmpty());
    ASSERT_THAT(chassis.Boards(), SizeIs(2));
    EXPECT_EQ(chassis.Boards()[0]->Plan().name, "A");
    EXPECT_EQ(chassis.At({1, 3})->Plan().name, "B");
    EXPECT_EQ(chassis.At({1, 4}), nullptr);
    EXPECT_EQ(chassis.At({0, 0}), nullptr);
}

TEST(Chassis, KeepsABoardThatIsStillThere) {
    Chassis chassis;
    EXPECT_THAT(chassis.Load({plan("A", 2)}, kThresholds), IsEmpty());
    const auto board = chassis.At({1, 2});
    EXPECT_THAT(chassis.Load({plan("B", 3), plan("A", 2)}, kThresholds), IsEmpty());
    EXPECT_EQ(chassis.At({1, 2}), board);
}

TEST(Chassis, PullsABoardThatIsGoneOrReplaced) {
    Chassis chassis;
    EXPECT_THAT(chassis.Load({plan("A", 2), plan("B", 3)}, kThresholds), IsEmpty());
    const auto replaced = chassis.At({1, 2});
    const auto gone = chassis.At({1, 3});
    EXPECT_EQ(gone->Run(Operation::Start, {}), OAM_SUCCESS);
    EXPECT_THAT(chassis.Load({plan("C", 2)}, kThresholds), SizeIs(1));
    EXPECT_NE(chassis.At({1, 2}), replaced);
    EXPECT_EQ(chassis.At({1, 3}), nullptr);
    EXPECT_FALSE(replaced->IsPresent());
    EXPECT_FALSE(gone->IsPresent());
}

TEST(Chassis, LooksAtAllBoardsAndKnowsTheEarliestStep) {
    Chassis chassis;
    auto early = plan("A", 2);
    early.temperature = *Curve::Parse("350, 900 after 5s", 0, 2000);
    auto late = plan("B", 3);
    late.temperature = *Curve::Parse("350, 900 after 50s", 0, 2000);
    EXPECT_THAT(chassis.Load({early, late}, kThresholds), IsEmpty());
    EXPECT_FALSE(chassis.NextStep(Clock::now()));
    for (const auto& board : chassis.Boards()) {
        EXPECT_EQ(board->Run(Operation::Start, {}), OAM_SUCCESS);
    }
    const auto now = Clock::now();
    const auto next = chassis.NextStep(now);
    ASSERT_TRUE(next);
    EXPECT_LE(*next, now + 5s);
    EXPECT_THAT(chassis.Look(*next), SizeIs(1));
    EXPECT_THAT(chassis.Look(now + 50s), SizeIs(1));
}

TEST(Chassis, EndsItsBoardsAndTakesNoMore) {
    Chassis chassis;
    EXPECT_THAT(chassis.Load({plan("A", 2)}, kThresholds), IsEmpty());
    chassis.End();
    EXPECT_THAT(chassis.Load({plan("B", 3)}, kThresholds), IsEmpty());
    EXPECT_THAT(chassis.Boards(), SizeIs(1));
    EXPECT_EQ(chassis.At({1, 2})->Run(Operation::Start, {}), SIM_ENDING);
}

}  // namespace
}  // namespace oam::sim
