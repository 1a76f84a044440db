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

TEST(TextScan, ReadsANumberOnlyWhenItFillsTheTextAndLiesInTheRange) {
    EXPECT_EQ(boundedNumber("31", 0, 31), 31);
    EXPECT_EQ(boundedNumber("-40", -40, 31), -40);
    EXPECT_EQ(boundedNumber("ff", 0, 255, 16), 255);
    for (const auto* text :
         {"", "32", "-1", "3x", " 3", "3 ", "+3", "0x3", "99999999999999999999"}) {
        EXPECT_FALSE(boundedNumber(text, 0, 31)) << text;
    }
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

TEST(TextScan, QuotesForeignTextsReadably) {
    EXPECT_EQ(inQuotes("a\nb"), "\"a?b\"");
    EXPECT_EQ(inQuotes(std::string(61, 'x')), "\"" + std::string(60, 'x') + "...\"");
}

TEST(TextScan, ComparesWithoutRegardToAsciiCaseAlone) {
    EXPECT_TRUE(sameText("A-Law", "a-lAW"));
    EXPECT_FALSE(sameText("\xc4", "\xe4"));
    EXPECT_FALSE(sameText("a", "ab"));
}

}  // namespace
}  // namespace oam::sim
