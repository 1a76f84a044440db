#include "text_scan.h"

#include <gtest/gtest.h>

namespace oam::sim {
namespace {

using namespace std::chrono_literals;

TEST(TextScan, TakesPartsFromTheFrontUntilNothingIsLeft) {
    std::string_view text = " one , two,,three";
    EXPECT_EQ(takePart(&text, ','), "one");
    EXPECT_EQ(takePart(&text, ','), "two");
    EXPECT_EQ(takePart(&text, ','), "");
    EXPECT_EQ(takePart(&text, ','), "three");
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(takePart(&text, ','), "");
}

TEST(TextScan, ReadsTimesInThreeUnits) {
    EXPECT_EQ(timeSpan("250ms"), 250ms);
    EXPECT_EQ(timeSpan("2s"), 2s);
    EXPECT_EQ(timeSpan("2 s"), 2s);
    EXPECT_EQ(timeSpan("60m"), 1h);
    EXPECT_EQ(timeSpan("40"), 40ms);
    for (const auto* text : {"", "s", "-1s", "61m", "2h", "1.5s", "18446744073709551616ms"}) {
        EXPECT_FALSE(timeSpan(text)) << text;
    }
}

}  // namespace
}  // namespace oam::sim
