#include "failure_window.h"

#include <gtest/gtest.h>

namespace oam::watch {
namespace {

using namespace std::chrono_literals;

constexpr FailureWindow::Moment kStart{std::chrono::hours(1)};
constexpr FailureLimit kLimit = {.failures = 3, .window = 60s};

TEST(FailureWindow, IsCrossedByTheFailureThatReachesTheLimit) {
    FailureWindow window;
    EXPECT_FALSE(window.Add(kStart, kLimit));
    EXPECT_FALSE(window.Add(kStart + 1s, kLimit));
    EXPECT_TRUE(window.Add(kStart + 2s, kLimit));
    EXPECT_FALSE(window.Add(kStart + 3s, kLimit));
}

TEST(FailureWindow, LetsOldFailuresGo) {
    FailureWindow window;
    EXPECT_FALSE(window.Add(kStart, kLimit));
    EXPECT_FALSE(window.Add(kStart + 1s, kLimit));
    EXPECT_FALSE(window.Add(kStart + 60s, kLimit));
    EXPECT_FALSE(window.Add(kStart + 61s, kLimit));
    EXPECT_TRUE(window.Add(kStart + 62s, kLimit));
}

TEST(FailureWindow, IsCrossedAgainAfterItFellBelow) {
    FailureWindow window;
    for (const auto at : {0s, 1s}) EXPECT_FALSE(window.Add(kStart + at, kLimit));
    EXPECT_TRUE(window.Add(kStart + 2s, kLimit));
    for (const auto at : {100s, 101s}) EXPECT_FALSE(window.Add(kStart + at, kLimit));
    EXPECT_TRUE(window.Add(kStart + 102s, kLimit));
}

TEST(FailureWindow, HasNoLimitAtZero) {
    FailureWindow window;
    for (int i = 0; i < 10; ++i) EXPECT_FALSE(window.Add(kStart, {.failures = 0, .window = 60s}));
}

TEST(FailureWindow, IsCrossedAtOnceByALimitOfOne) {
    FailureWindow window;
    const FailureLimit one = {.failures = 1, .window = 60s};
    EXPECT_TRUE(window.Add(kStart, one));
    EXPECT_FALSE(window.Add(kStart + 1s, one));
    EXPECT_TRUE(window.Add(kStart + 61s, one));
}

TEST(FailureWindow, KeepsAsManyFailuresAsTheHighestLimitNeeds) {
    FailureWindow window;
    const FailureLimit highest = {.failures = FailureLimit::kMostFailures, .window = 60s};
    unsigned crossings = 0;
    for (unsigned i = 0; i < 3 * FailureLimit::kMostFailures; ++i) {
        crossings += window.Add(kStart + std::chrono::milliseconds(i), highest);
    }
    EXPECT_EQ(crossings, 1u);
}

}  // namespace
}  // namespace oam::watch
