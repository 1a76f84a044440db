// Calls that must have the service for themselves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <utility>

#include "gate.h"
#include "no_threads.h"
#include "work/lanes.h"

namespace oam::server::test {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;

constexpr auto kForEver = std::chrono::milliseconds::max();

std::function<void()> nothing() {
    return [] {};
}

}  // namespace

TEST(LanesAlone, RunsOnThisThreadWhenNothingElseDoes) {
    Lanes lanes({});
    std::thread::id ran;
    EXPECT_TRUE(lanes.Alone(0ms, [&] { ran = std::this_thread::get_id(); }));
    EXPECT_EQ(ran, std::this_thread::get_id());
}

TEST(LanesAlone, WaitsForWhatRuns) {
    Gate gate;
    std::atomic<bool> hasEnded{false};
    Lanes lanes({});
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", [&, task = gate.Task()] {
        task();
        hasEnded = true;
    }));
    gate.AwaitBegun();
    std::thread opener([&] { gate.Open(); });
    EXPECT_TRUE(lanes.Alone(kForEver, [&] { EXPECT_TRUE(hasEnded); }));
    opener.join();
}

TEST(LanesAlone, CallsNothingWhenTheTimeIsOver) {
    Gate gate;
    Lanes lanes({});
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", gate.Task()));
    gate.AwaitBegun();
    EXPECT_FALSE(lanes.Alone(1ms, [] { ADD_FAILURE() << "called"; }));
    EXPECT_FALSE(lanes.Alone(-1ms, [] { ADD_FAILURE() << "called"; }));
    // And tasks go on.
    std::promise<void> ran;
    EXPECT_FALSE(lanes.Post("Ask", "Board 2", [&] { ran.set_value(); }));
    ran.get_future().wait();
    gate.Open();
}

TEST(LanesAlone, HoldsNewTasksBackAndLetsThemGoOnInTheirOrder) {
    Lanes lanes({});
    std::vector<int> order;
    std::promise<void> last;
    EXPECT_TRUE(lanes.Alone(kForEver, [&] {
        for (int i = 0; i < 5; ++i)
            EXPECT_FALSE(lanes.Post("Ask", "Board 1", [&, i] {
                order.push_back(i);
                if (i == 4) last.set_value();
            }));
        EXPECT_EQ(lanes.Waiting(), 5u);
        EXPECT_TRUE(lanes.Runs().empty());
    }));
    last.get_future().wait();
    EXPECT_EQ(order, (std::vector{0, 1, 2, 3, 4}));
}

TEST(LanesAlone, HoldsBackWhatWaitedAlready) {
    Gate gate;
    Lanes lanes({});
    std::atomic<bool> isAlone{false};
    std::promise<bool> ranAlone;
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", gate.Task()));
    gate.AwaitBegun();
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", [&] { ranAlone.set_value(isAlone); }));
    std::promise<void> holds;
    std::thread opener([&] {
        // Held back, a task of a free lane waits.
        while (lanes.Waiting() == 1) EXPECT_FALSE(lanes.Post("Ask", "", nothing()));
        gate.Open();
    });
    EXPECT_TRUE(lanes.Alone(kForEver, [&] {
        isAlone = true;
        EXPECT_GE(lanes.Waiting(), 2u);
        isAlone = false;
    }));
    EXPECT_FALSE(ranAlone.get_future().get());
    opener.join();
}

TEST(LanesAlone, LetsTheTasksGoOnWhenTheTimeIsOver) {
    Gate gate;
    Lanes lanes({});
    std::promise<void> ran;
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", gate.Task()));
    gate.AwaitBegun();
    std::thread poster([&] {
        // Held back or not: it runs.
        EXPECT_FALSE(lanes.Post("Ask", "Board 2", [&] { ran.set_value(); }));
    });
    EXPECT_FALSE(lanes.Alone(20ms, nothing()));
    ran.get_future().wait();
    poster.join();
    gate.Open();
}

TEST(LanesAlone, LetsTheTasksGoOnWhenTheCallThrows) {
    Lanes lanes({});
    EXPECT_THROW(lanes.Alone(kForEver, [] { throw std::runtime_error("no"); }), std::runtime_error);
    std::promise<void> ran;
    EXPECT_FALSE(lanes.Post("Ask", "", [&] { ran.set_value(); }));
    ran.get_future().wait();
}

TEST(LanesAlone, OneCallAtATimeIsAlone) {
    Lanes lanes({});
    bool isInside = false;  // no lock: nobody else is there
    int calls = 0;
    std::vector<std::thread> callers;
    for (int i = 0; i < 4; ++i)
        callers.emplace_back([&] {
            for (int n = 0; n < 20; ++n) {
                EXPECT_TRUE(lanes.Alone(kForEver, [&] {
                    EXPECT_FALSE(std::exchange(isInside, true));
                    ++calls;
                    std::this_thread::yield();
                    isInside = false;
                }));
                EXPECT_FALSE(lanes.Post("Ask", "Board", [] {}));
            }
        });
    for (std::thread& caller : callers) caller.join();
    EXPECT_EQ(calls, 80);
}

TEST(LanesAlone, ASecondCallWaitsItsTimeForTheFirst) {
    Lanes lanes({});
    EXPECT_TRUE(lanes.Alone(kForEver, [&] {
        std::thread([&] {
            EXPECT_FALSE(lanes.Alone(1ms, [] { ADD_FAILURE() << "called"; }));
        }).join();
    }));
}

TEST(LanesAlone, ATaskThatCallsItGetsItsTimeAndNoMore) {
    Lanes lanes({});
    std::promise<bool> answer;
    ASSERT_FALSE(lanes.Post("Ask", "", [&] { answer.set_value(lanes.Alone(1ms, nothing())); }));
    EXPECT_FALSE(answer.get_future().get());
}

TEST(LanesAlone, WhatItHoldsBackBeyondTheLimitIsRefused) {
    Lanes lanes({.waiting = 1});
    EXPECT_TRUE(lanes.Alone(kForEver, [&] {
        EXPECT_FALSE(lanes.Post("Ask", "", nothing()));
        const auto refusal = lanes.Post("Ask", "", nothing());
        ASSERT_TRUE(refusal);
        EXPECT_EQ(refusal->text, "a call that runs alone has not returned");
    }));
}

TEST(LanesAlone, SaysWhatACallThatWillBeAloneWaitsFor) {
    Gate gate;
    Lanes lanes({.waiting = 0});
    ASSERT_FALSE(lanes.Post("GetBoardStatus", "Board 3", gate.Task()));
    gate.AwaitBegun();
    std::thread alone([&] { EXPECT_TRUE(lanes.Alone(kForEver, nothing())); });
    std::optional<Lanes::Refusal> refusal;
    while (!refusal || refusal->text.starts_with("all 32 threads"))
        refusal = lanes.Post("Ask", "", nothing());
    EXPECT_THAT(refusal->text, HasSubstr("a call waits to run alone: GetBoardStatus of \"Board 3\" "
                                         "has not returned for"));
    gate.Open();
    alone.join();
}

TEST(LanesAlone, WhatItHeldBackGoesOnWithFewerThreads) {
    std::promise<void> both;
    std::atomic<int> ran{0};
    Lanes lanes({});
    const auto count = [&] {
        if (++ran == 2) both.set_value();
    };
    std::unique_ptr<NoThreads> none;
    EXPECT_TRUE(lanes.Alone(kForEver, [&] {
        EXPECT_FALSE(lanes.Post("Ask", "", count));
        EXPECT_FALSE(lanes.Post("Ask", "", count));
        none = std::make_unique<NoThreads>(1);
    }));
    both.get_future().wait();
}

TEST(LanesAlone, WhatItHeldBackIsDroppedWhenThereIsNoThread) {
    bool ran = false;
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> isHeld = held;
    Lanes lanes({});
    std::unique_ptr<NoThreads> none;
    EXPECT_TRUE(lanes.Alone(kForEver, [&] {
        EXPECT_FALSE(lanes.Post("Ask", "", [&ran, held = std::move(held)] { ran = true; }));
        none = std::make_unique<NoThreads>();
    }));
    EXPECT_TRUE(isHeld.expired());
    EXPECT_EQ(lanes.Waiting(), 0u);
    EXPECT_FALSE(ran);
}

}  // namespace oam::server::test
