// Requests by method and result, within bounds.
#include "metrics/request_counts.h"

#include <gtest/gtest.h>

namespace oam::server {
namespace {

TEST(RequestCounts, TellMethodsAndResultsApart) {
    RequestCounts counts;
    counts.Begin("/a/Get");
    counts.Begin("/a/Get");
    counts.Begin("/a/Set");
    counts.End("/a/Get", 0, 0.5);
    counts.End("/a/Set", 5, 0.25);
    const auto all = counts.All();
    EXPECT_EQ(all.at("/a/Get").results[0], 1u);
    EXPECT_EQ(all.at("/a/Get").underWay, 1u);
    EXPECT_EQ(all.at("/a/Get").seconds, 0.5);
    EXPECT_EQ(all.at("/a/Set").results[5], 1u);
    EXPECT_STREQ(RequestCounts::ResultName(5), "NOT_FOUND");
    EXPECT_STREQ(RequestCounts::ResultName(RequestCounts::kResults - 1), "UNAUTHENTICATED");
}

TEST(RequestCounts, TakeAResultThatIsNoneForUnknown) {
    RequestCounts counts;
    for (const int result : {17, 99, -1}) {
        counts.Begin("/a/Get");
        counts.End("/a/Get", result, 0);
    }
    EXPECT_EQ(counts.All().at("/a/Get").results[2], 3u);
}

TEST(RequestCounts, OfMethodsThatAreMadeUpAreBounded) {
    RequestCounts counts;
    constexpr std::size_t kMore = 500;
    for (std::size_t i = 0; i < RequestCounts::kMethods + kMore; ++i) {
        const std::string method = "/m" + std::to_string(i);
        counts.Begin(method);
        counts.End(method, 12, 0);
    }
    const auto all = counts.All();
    EXPECT_EQ(all.size(), RequestCounts::kMethods + 1);
    EXPECT_EQ(all.at("other").results[12], kMore);
    EXPECT_EQ(all.at("other").underWay, 0u);
}

}  // namespace
}  // namespace oam::server
