// Alerts by code and severity, counted without a lock and within bounds.
#include "metrics/alert_counts.h"

#include <gtest/gtest.h>

#include <map>
#include <thread>
#include <vector>

namespace oam::server {
namespace {

std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint64_t> all(const AlertCounts& counts) {
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint64_t> found;
    for (const auto& kind : counts.All()) found[{kind.code, kind.severity}] = kind.alerts;
    return found;
}

TEST(AlertCounts, TellCodesAndSeveritiesApart) {
    AlertCounts counts;
    EXPECT_TRUE(all(counts).empty());
    counts.Note(5, 0);
    counts.Note(5, 0);
    counts.Note(5, 2);
    counts.Note(6, 0);
    counts.Note(0xffffffff, 0xffffffff);
    const auto found = all(counts);
    EXPECT_EQ(found.size(), 4u);
    EXPECT_EQ(found.at({5, 0}), 2u);
    EXPECT_EQ(found.at({5, 2}), 1u);
    EXPECT_EQ(found.at({6, 0}), 1u);
    EXPECT_EQ(counts.Others(), 0u);
}

TEST(AlertCounts, OfCodesThatAreMadeUpAreBounded) {
    AlertCounts counts;
    constexpr std::uint32_t kMore = 1000;
    for (std::uint32_t code = 0; code < AlertCounts::kKinds + kMore; ++code) counts.Note(code, 0);
    EXPECT_EQ(counts.All().size(), AlertCounts::kKinds);
    EXPECT_EQ(counts.Others(), kMore);
    counts.Note(0, 0);
    EXPECT_EQ(all(counts).at({0, 0}), 2u);
}

TEST(AlertCounts, FromSeveralThreadsLoseNone) {
    AlertCounts counts;
    constexpr std::uint32_t kThreads = 4, kEach = 20000, kCodes = 50;
    std::vector<std::thread> threads;
    for (std::uint32_t i = 0; i < kThreads; ++i)
        threads.emplace_back([&] {
            for (std::uint32_t n = 0; n < kEach; ++n) counts.Note(n % kCodes, 1);
        });
    for (std::thread& thread : threads) thread.join();
    const auto found = all(counts);
    ASSERT_EQ(found.size(), kCodes);
    for (const auto& [kind, alerts] : found) EXPECT_EQ(alerts, kThreads * kEach / kCodes);
}

}  // namespace
}  // namespace oam::server
