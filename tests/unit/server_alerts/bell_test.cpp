#include "store/bell.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace oam::server {
namespace {

using std::chrono::milliseconds;

TEST(Bell, RingsAreNotLostBeforeAnybodyWaits) {
    Bell bell;
    bell.Ring();
    bell.Ring();
    EXPECT_TRUE(bell.AwaitRing());
}

TEST(Bell, IsReadyToBeRungAgainWhenItHasBeenHeard) {
    Bell bell;
    Bell answer;
    std::atomic<int> rings{0};
    constexpr int kTimes = 20000;
    std::thread listener([&] {
        for (int i = 0; i < kTimes; ++i) {
            ASSERT_TRUE(bell.AwaitRing());
            ASSERT_EQ(rings, i + 1) << "it was not rung again";
            answer.Ring();
        }
    });
    for (int i = 0; i < kTimes; ++i) {
        ++rings;
        bell.Ring();
        ASSERT_TRUE(answer.AwaitRing());
    }
    listener.join();
}

TEST(Bell, TheEndIsHeardByWhoeverWaitsAndForGood) {
    Bell bell;
    std::thread listener([&] { EXPECT_FALSE(bell.AwaitRing()); });
    bell.End();
    listener.join();
    bell.Ring();
    EXPECT_FALSE(bell.AwaitRing());
    EXPECT_TRUE(bell.AwaitEnd(milliseconds(0)));
}

TEST(Bell, RingsDoNotEndAPause) {
    Bell bell;
    bell.Ring();
    EXPECT_FALSE(bell.AwaitEnd(milliseconds(5)));
    EXPECT_TRUE(bell.AwaitRing()) << "and are heard after it";
    std::thread listener([&] { EXPECT_TRUE(bell.AwaitEnd(std::chrono::hours(1))); });
    bell.End();
    listener.join();
}

}  // namespace
}  // namespace oam::server
