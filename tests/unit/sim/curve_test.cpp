#include "curve.h"

#include <gtest/gtest.h>

#include <string>

namespace oam::sim {
namespace {

using namespace std::chrono_literals;

TEST(Curve, HoldsEachValueUntilTheNextOnesTime) {
    const auto curve = Curve::Parse("350, 600 after 10s, -9 after 1m", -1000, 2000);
    ASSERT_TRUE(curve);
    EXPECT_EQ(curve->ValueAt(-5s), 350);
    EXPECT_EQ(curve->ValueAt(0s), 350);
    EXPECT_EQ(curve->ValueAt(9999ms), 350);
    EXPECT_EQ(curve->ValueAt(10s), 600);
    EXPECT_EQ(curve->ValueAt(1h), -9);
}

TEST(Curve, TellsTheNextStepUntilTheLastIsReached) {
    const auto curve = Curve::Parse("1, 2 after 10s, 3 after 20s", 0, 9);
    ASSERT_TRUE(curve);
    EXPECT_EQ(curve->NextStep(0s), 10s);
    EXPECT_EQ(curve->NextStep(10s), 20s);
    EXPECT_FALSE(curve->NextStep(20s));
    EXPECT_FALSE(Curve(5).NextStep(0s));
}

TEST(Curve, RefusesWhatIsNoCurve) {
    for (const auto* text : {"", "x", "10", "1 after 2s", "1, 2", "1, 2 after", "1, 2 before 3s",
                             "1, 2 after 3s, 3 after 3s", "1, 2 after 0s", "1, 10 after 2s"}) {
        EXPECT_FALSE(Curve::Parse(text, 0, 9)) << text;
    }
}

TEST(Curve, IsBounded) {
    std::string longest = "1";
    for (std::size_t i = 1; i < Curve::kLongest; ++i) {
        longest += ", 2 after " + std::to_string(i) + "s";
    }
    EXPECT_TRUE(Curve::Parse(longest, 0, 9));
    EXPECT_FALSE(Curve::Parse(longest + ", 1 after 1h", 0, 9));
}

}  // namespace
}  // namespace oam::sim
