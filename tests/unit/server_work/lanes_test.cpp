#include "work/lanes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <mutex>
#include <thread>

#include "gate.h"
#include "no_threads.h"

namespace oam::server::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::function<void()> nothing() {
    return [] {};
}

struct AtThreadEnd {
    std::promise<void>* told = nullptr;
    ~AtThreadEnd() {
        if (told) told->set_value();
    }
};
thread_local AtThreadEnd atThreadEnd;

}  // namespace

TEST(Lanes, RunATaskOnAThreadOfItsOwn) {
    Lanes lanes({});
    std::promise<std::thread::id> ran;
    EXPECT_FALSE(lanes.Post("Ask", "", [&] { ran.set_value(std::this_thread::get_id()); }));
    EXPECT_NE(ran.get_future().get(), std::this_thread::get_id());
}

TEST(Lanes, RunTheTasksOfALaneOneByOneInTheirOrder) {
    std::vector<int> order;  // no lock: one at a time, each after the other
    {
        Lanes lanes({});
        std::latch ended(30);
        for (int i = 0; i < 30; ++i)
            ASSERT_FALSE(lanes.Post("Ask", "Board 1", [&, i] {
                order.push_back(i);
                ended.count_down();
            }));
        ended.wait();
    }
    for (int i = 0; i < 30; ++i) EXPECT_EQ(order.at(i), i);
}

TEST(Lanes, TakeNamesThatDifferInCaseForOneLane) {
    Gate gate;
    Lanes lanes({});
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", gate.Task()));
    gate.AwaitBegun();
    ASSERT_FALSE(lanes.Post("Ask", "BOARD 1", nothing()));
    EXPECT_EQ(lanes.Waiting(), 1u);
    gate.Open();
}

TEST(Lanes, RunOtherLanesBesideOneThatHangs) {
    Gate gate;
    Lanes lanes({});
    ASSERT_FALSE(lanes.Post("GetBoardStatus", "Board 1", gate.Task()));
    gate.AwaitBegun();
    std::latch ended(20);
    for (int i = 0; i < 20; ++i)
        ASSERT_FALSE(lanes.Post("Ask", i % 2 ? "" : "Board 2", [&] { ended.count_down(); }));
    ended.wait();
    gate.Open();
}

TEST(Lanes, RunTasksWithoutALaneBesideEachOther) {
    Lanes lanes({});
    std::latch together(10);
    for (int i = 0; i < 10; ++i)
        ASSERT_FALSE(lanes.Post("Ask", "", [&] { together.arrive_and_wait(); }));
    together.wait();
}

TEST(Lanes, GoOnWithWhatWaitsWhenALaneComesBack) {
    Gate gate;
    Lanes lanes({});
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", gate.Task()));
    gate.AwaitBegun();
    std::promise<void> ran;
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", [&] { ran.set_value(); }));
    EXPECT_EQ(lanes.Waiting(), 1u);
    gate.Open();
    ran.get_future().wait();
    EXPECT_EQ(lanes.Waiting(), 0u);
}

TEST(Lanes, RunNoMoreTasksAtOnceThanThereAreThreads) {
    std::atomic<int> now{0};
    std::atomic<int> most{0};
    {
        Lanes lanes({.threads = 3});
        std::latch ended(200);
        for (int i = 0; i < 200; ++i)
            ASSERT_FALSE(lanes.Post("Ask", i % 3 ? "" : "Board " + std::to_string(i), [&] {
                int seen = ++now;
                for (int old = most; old < seen && !most.compare_exchange_weak(old, seen);) {
                }
                std::this_thread::yield();
                --now;
                ended.count_down();
            }));
        ended.wait();
    }
    EXPECT_LE(most, 3);
}

TEST(Lanes, TellWhatRunsOldestFirst) {
    Gate first;
    Gate second;
    const auto before = std::chrono::steady_clock::now();
    Lanes lanes({});
    EXPECT_THAT(lanes.Runs(), IsEmpty());
    ASSERT_FALSE(lanes.Post("GetBoardStatus", "Board 3", first.Task()));
    ASSERT_FALSE(lanes.Post("DetectBoards", "", second.Task()));
    first.AwaitBegun();
    second.AwaitBegun();
    const auto runs = lanes.Runs();
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[0].what, "GetBoardStatus");
    EXPECT_EQ(runs[0].lane, "Board 3");
    EXPECT_EQ(runs[1].what, "DetectBoards");
    EXPECT_EQ(runs[1].lane, "");
    EXPECT_GE(runs[0].since, before);
    EXPECT_GE(runs[1].since, runs[0].since);
    first.Open();
    second.Open();
}

TEST(Lanes, TellOfATaskNothingOnceItHasEnded) {
    Lanes lanes({});
    std::promise<void> ran;
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", [&] { ran.set_value(); }));
    ran.get_future().wait();
    EXPECT_TRUE(lanes.Alone(std::chrono::minutes(1), [] {}));
    EXPECT_THAT(lanes.Runs(), IsEmpty());
}

TEST(Lanes, EndAThreadWithItsTask) {
    // What the service keeps for a thread is given back when the thread ends.
    Lanes lanes({.threads = 1});
    std::promise<void> gone;
    ASSERT_FALSE(lanes.Post("Create", "", [&] { atThreadEnd.told = &gone; }));
    gone.get_future().wait();
}

TEST(Lanes, WaitAtTheirEndForWhatRuns) {
    std::atomic<bool> hasEnded{false};
    std::thread opener;
    Gate gate;
    {
        Lanes lanes({});
        ASSERT_FALSE(lanes.Post("Ask", "", [&, task = gate.Task()] {
            task();
            hasEnded = true;
        }));
        gate.AwaitBegun();
        opener = std::thread([&] { gate.Open(); });
    }
    EXPECT_TRUE(hasEnded);
    opener.join();
}

TEST(Lanes, DropAtTheirEndWhatWaits) {
    Gate gate;
    std::atomic<bool> ran{false};
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> isHeld = held;
    std::promise<void> dropped;
    std::shared_ptr<void> tell(nullptr, [&](void*) { dropped.set_value(); });
    std::thread opener;
    {
        Lanes lanes({});
        ASSERT_FALSE(lanes.Post("Ask", "Board 1", gate.Task()));
        gate.AwaitBegun();
        ASSERT_FALSE(lanes.Post("Ask", "Board 1", [&ran, held = std::move(held)] { ran = true; }));
        ASSERT_FALSE(lanes.Post("Ask", "Board 1", [tell = std::move(tell)] {}));
        EXPECT_FALSE(isHeld.expired());
        // The drop does not wait for what runs: who waits for an answer gets one.
        opener = std::thread([&] {
            dropped.get_future().wait();
            gate.Open();
        });
    }
    EXPECT_TRUE(isHeld.expired());
    EXPECT_FALSE(ran);
    opener.join();
}

TEST(Lanes, TakeTasksFromManyThreads) {
    std::atomic<int> ran{0};
    std::latch ended(400);
    Lanes lanes({.threads = 4, .waitingPerLane = 1000, .waiting = 1000});
    std::vector<std::thread> posters;
    for (int poster = 0; poster < 4; ++poster)
        posters.emplace_back([&, poster] {
            for (int i = 0; i < 100; ++i) {
                const std::string lane = i % 4 ? "Board " + std::to_string(i % 3) : "";
                const auto refusal = lanes.Post("Ask " + std::to_string(poster), lane, [&] {
                    ++ran;
                    ended.count_down();
                });
                EXPECT_FALSE(refusal) << refusal->text;
                (void)lanes.Runs();
                (void)lanes.Waiting();
            }
        });
    for (std::thread& poster : posters) poster.join();
    ended.wait();
    EXPECT_EQ(ran, 400);
}

TEST(Lanes, TakeATaskThatATaskPosts) {
    Lanes lanes({.threads = 1});
    std::promise<void> ran;
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", [&] {
        EXPECT_FALSE(lanes.Post("Ask", "Board 1", [&] { ran.set_value(); }));
    }));
    ran.get_future().wait();
}

TEST(Lanes, LetATaskEndBeforeTheNextOfItsLaneBegins) {
    // Also what the task holds.
    Lanes lanes({});
    std::atomic<bool> isGone{false};
    std::promise<bool> wasGone;
    Gate gate;
    std::shared_ptr<void> hold(nullptr, [&](void*) {
        std::this_thread::yield();
        isGone = true;
    });
    ASSERT_FALSE(
        lanes.Post("Ask", "Board 1", [task = gate.Task(), hold = std::move(hold)] { task(); }));
    ASSERT_FALSE(lanes.Post("Ask", "Board 1", [&] { wasGone.set_value(isGone); }));
    gate.Open();
    EXPECT_TRUE(wasGone.get_future().get());
}

}  // namespace oam::server::test
