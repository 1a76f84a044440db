// Which tasks are not taken, and what is said of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "gate.h"
#include "no_threads.h"
#include "work/lanes.h"

namespace oam::server::test {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

std::function<void()> nothing() {
    return [] {};
}

std::string textOf(const std::optional<Lanes::Refusal>& refusal) {
    return refusal ? refusal->text : "taken";
}

}  // namespace

TEST(LanesLimits, AFullLaneNamesTheCallThatHoldsIt) {
    Gate gate;
    Lanes lanes({.waitingPerLane = 2});
    ASSERT_FALSE(lanes.Post("GetBoardStatus", "Board 3", gate.Task()));
    gate.AwaitBegun();
    ASSERT_FALSE(lanes.Post("StartBoard", "board 3", nothing()));
    ASSERT_FALSE(lanes.Post("StartBoard", "Board 3", nothing()));
    EXPECT_THAT(textOf(lanes.Post("StopBoard", "BOARD 3", nothing())),
                MatchesRegex("GetBoardStatus of \"Board 3\" has not returned for [0-9]+ s"));
    EXPECT_EQ(lanes.Waiting(), 2u);
    // Another board pays nothing.
    std::promise<void> ran;
    EXPECT_FALSE(lanes.Post("StopBoard", "Board 4", [&] { ran.set_value(); }));
    ran.get_future().wait();
    gate.Open();
}

TEST(LanesLimits, ATaskOfAFullLaneIsDestroyedWithoutBeingRun) {
    Gate gate;
    bool ran = false;
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> isHeld = held;
    {
        Lanes lanes({.waitingPerLane = 0});
        ASSERT_FALSE(lanes.Post("Ask", "Board 3", gate.Task()));
        EXPECT_TRUE(lanes.Post("Ask", "Board 3", [&ran, held = std::move(held)] { ran = true; }));
        EXPECT_TRUE(isHeld.expired());
        gate.Open();
    }
    EXPECT_FALSE(ran);
}

TEST(LanesLimits, WithoutAFreeThreadTheOldestCallIsNamed) {
    Gate first;
    Gate second;
    Lanes lanes({.threads = 2, .waiting = 1});
    ASSERT_FALSE(lanes.Post("DetectBoards", "", first.Task()));
    ASSERT_FALSE(lanes.Post("GetBoardStatus", "Board 3", second.Task()));
    ASSERT_FALSE(lanes.Post("Ask", "Board 4", nothing()));
    EXPECT_THAT(
        textOf(lanes.Post("Ask", "Board 5", nothing())),
        MatchesRegex("all 2 threads are taken: DetectBoards has not returned for [0-9]+ s"));
    EXPECT_THAT(textOf(lanes.Post("Ask", "", nothing())), HasSubstr("all 2 threads are taken"));
    // Whose lane is held waits for that call, whoever holds the threads.
    EXPECT_THAT(textOf(lanes.Post("Ask", "Board 3", nothing())),
                HasSubstr("GetBoardStatus of \"Board 3\" has not returned"));
    first.Open();
    second.Open();
}

TEST(LanesLimits, ALaneIsFullAlsoWhenNobodyHoldsIt) {
    Gate gate;
    Lanes lanes({.threads = 1, .waitingPerLane = 1});
    ASSERT_FALSE(lanes.Post("DetectBoards", "", gate.Task()));
    ASSERT_FALSE(lanes.Post("Ask", "Board 4", nothing()));
    EXPECT_THAT(textOf(lanes.Post("Ask", "Board 4", nothing())),
                HasSubstr("all 1 threads are taken: DetectBoards has not returned for"));
    gate.Open();
}

TEST(LanesLimits, ATaskThatNeedNotWaitIsTakenHoweverManyDo) {
    Gate gate;
    Lanes lanes({.threads = 2, .waitingPerLane = 1, .waiting = 1});
    ASSERT_FALSE(lanes.Post("Ask", "Board 3", gate.Task()));
    ASSERT_FALSE(lanes.Post("Ask", "Board 3", nothing()));
    std::promise<void> ran;
    EXPECT_FALSE(lanes.Post("Ask", "Board 4", [&] { ran.set_value(); }));
    ran.get_future().wait();
    gate.Open();
}

TEST(LanesLimits, TasksWithoutALaneHaveNoLaneToFill) {
    Gate gate;
    Lanes lanes({.threads = 1, .waitingPerLane = 1, .waiting = 10});
    ASSERT_FALSE(lanes.Post("Ask", "", gate.Task()));
    for (int i = 0; i < 10; ++i) EXPECT_FALSE(lanes.Post("Ask", "", nothing()));
    EXPECT_TRUE(lanes.Post("Ask", "", nothing()));
    gate.Open();
}

TEST(LanesLimits, WithoutAThreadATaskIsRefused) {
    Lanes lanes({});
    bool ran = false;
    {
        const NoThreads none;
        EXPECT_THAT(textOf(lanes.Post("Ask", "Board 1", [&] { ran = true; })),
                    HasSubstr("no thread can be made: "));
    }
    EXPECT_EQ(lanes.Waiting(), 0u);
    EXPECT_TRUE(lanes.Runs().empty());
    std::promise<void> after;
    EXPECT_FALSE(lanes.Post("Ask", "Board 1", [&] { after.set_value(); }));
    after.get_future().wait();
    EXPECT_FALSE(ran);
}

TEST(LanesLimits, ATaskThatWaitsForItsLaneNeedsNoThreadYet) {
    Gate gate;
    Lanes lanes({});
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", gate.Task()));
    gate.AwaitBegun();
    std::promise<void> ran;
    {
        const NoThreads none;
        EXPECT_FALSE(lanes.Post("Ask", "Board 1", [&] { ran.set_value(); }));
    }
    gate.Open();
    ran.get_future().wait();
}

TEST(LanesLimits, WithoutANewThreadTheLaneGoesOnOnItsOld) {
    Gate gate;
    Lanes lanes({});
    std::promise<void> ran;
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", gate.Task()));
    gate.AwaitBegun();
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", nothing()));
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", [&] { ran.set_value(); }));
    const NoThreads none;
    gate.Open();
    ran.get_future().wait();
}

TEST(LanesLimits, NoThreadsMeanOne) {
    Lanes lanes({.threads = 0});
    std::promise<void> ran;
    EXPECT_FALSE(lanes.Post("Ask", "", [&] { ran.set_value(); }));
    ran.get_future().wait();
}

}  // namespace oam::server::test
