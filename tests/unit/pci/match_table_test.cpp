#include "match_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace oam::pci {
namespace {

using ::testing::ElementsAre;

TEST(Pattern, IsHexadecimalDigitsWithPlaceholders) {
    for (const char* good : {"8086", "10D3", "80??", "*", "8*", "8086*", "????"}) {
        EXPECT_TRUE(isPattern(good, kIdDigits)) << good;
    }
    for (const char* bad : {"", "808", "80866", "80866*", "80g6", "**", "*8086", "80 6", "0x80"}) {
        EXPECT_FALSE(isPattern(bad, kIdDigits)) << bad;
    }
}

TEST(Pattern, FitsTheDigitsThatItNames) {
    EXPECT_TRUE(fitsPattern("10d3", 0x10d3, kIdDigits));
    EXPECT_TRUE(fitsPattern("10D?", 0x10d3, kIdDigits));
    EXPECT_TRUE(fitsPattern("1*", 0x10d3, kIdDigits));
    EXPECT_FALSE(fitsPattern("1*", 0x00d3, kIdDigits));
    EXPECT_TRUE(fitsPattern("00d3", 0x00d3, kIdDigits));
    EXPECT_TRUE(fitsPattern("02*", 0x028000, kClassDigits));
    EXPECT_FALSE(fitsPattern("02*", 0x120000, kClassDigits));
    EXPECT_FALSE(fitsPattern("bad", 0x0bad, kIdDigits));
}

const std::vector<MatchRow> kTable = {
    {"8086", "10d3", "*", "SPECIAL"},
    {"*", "*", "0200*", "NIC"},
    {"*", "*", "0204*", "isdn"},
    {"1234", "*", "*", "ISDN"},
};

TEST(MatchTable, AnswersTheFirstRowThatFits) {
    EXPECT_EQ(productOf(kTable, {0x8086, 0x10d3, 0x020000}), "SPECIAL");
    EXPECT_EQ(productOf(kTable, {0x8086, 0x10d4, 0x020000}), "NIC");
    EXPECT_EQ(productOf(kTable, {0x1234, 0x0001, 0x010000}), "ISDN");
    EXPECT_EQ(productOf(kTable, {0x8086, 0x10d4, 0x010000}), "");
    EXPECT_EQ(productOf({}, {0x8086, 0x10d4, 0x010000}), "");
}

TEST(MatchTable, ListsEachProductOnceWhateverItsCase) {
    EXPECT_THAT(productsOf(kTable), ElementsAre("SPECIAL", "NIC", "isdn"));
}

}  // namespace
}  // namespace oam::pci
