#include "steady_reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace oam::shadow {
namespace {

using ::testing::Optional;
using Reading = std::optional<std::string>;

// Passes that read one after another of these; the last one from then on.
struct Passes {
    Reading operator()() {
        const auto& reading = readings[std::min(count, readings.size() - 1)];
        ++count;
        return reading;
    }
    std::vector<Reading> readings;
    std::size_t count = 0;
};

Reading steady(Passes* passes) {
    return readSteady([passes] { return (*passes)(); });
}

TEST(SteadyReading, TakesTwoPassesWhenNothingChanges) {
    Passes passes{{"a"}};
    EXPECT_THAT(steady(&passes), Optional(std::string("a")));
    EXPECT_EQ(passes.count, 2u);
}

TEST(SteadyReading, IsWhatTwoPassesInARowAgreeOn) {
    Passes passes{{"a", "b", "a", "c", "c", "d"}};
    EXPECT_THAT(steady(&passes), Optional(std::string("c")));
}

TEST(SteadyReading, IsNeverAPassThatSawAChange) {
    Passes passes{{std::nullopt, std::nullopt, "a", std::nullopt, "b", "b"}};
    EXPECT_THAT(steady(&passes), Optional(std::string("b")));
}

TEST(SteadyReading, GivesUpWhenTheTableNeverRests) {
    int count = 0;
    EXPECT_EQ(readSteady([&] { return std::make_optional(count++); }), std::nullopt);
    EXPECT_EQ(count, kMostPasses);
    Passes passes{{std::nullopt}};
    EXPECT_EQ(steady(&passes), std::nullopt);
}

}  // namespace
}  // namespace oam::shadow
