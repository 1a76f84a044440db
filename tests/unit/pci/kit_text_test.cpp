// The kit's reading of texts and names.
#include <gtest/gtest.h>

#include "kit/array_name.h"
#include "kit/kept_text.h"
#include "kit/text_scan.h"

namespace oam::kit {
namespace {

TEST(KitText, ComparesWithoutAsciiCaseAlone) {
    EXPECT_TRUE(sameText("Board[1].NAME", "board[1].name"));
    EXPECT_FALSE(sameText("a", "ab"));
    EXPECT_FALSE(sameText("\xc4", "\xe4"));
    EXPECT_EQ(lowerCase("AbZ\xc4["), "abz\xc4[");
}

TEST(KitText, IsTrimmedAtBothEnds) {
    EXPECT_EQ(trimmed(" \t a b \r\n"), "a b");
    EXPECT_EQ(trimmed("   "), "");
    EXPECT_EQ(trimmed(""), "");
}

TEST(KitText, GivesWholeBoundedNumbersOnly) {
    EXPECT_EQ(boundedNumber("42", 0, 100), 42);
    EXPECT_EQ(boundedNumber("-5", -5, 5), -5);
    EXPECT_EQ(boundedNumber("fF", 0, 255, 16), 255);
    for (const char* bad :
         {"", " 1", "1 ", "+1", "1.0", "0x1", "101", "-1", "99999999999999999999", "one"}) {
        EXPECT_EQ(boundedNumber(bad, 0, 100), std::nullopt) << bad;
    }
}

TEST(KitText, IsQuotedWithoutControlCharacters) {
    EXPECT_EQ(oam::kit::quoted("a\n\x1b%s"), "\"a??%s\"");
    EXPECT_EQ(oam::kit::quoted(std::string(100, 'x')), '"' + std::string(60, 'x') + "...\"");
}

TEST(KitArrayName, NamesElementsInOneWay) {
    EXPECT_EQ(elementName("Boards", 7, ".Name"), "Boards[7].Name");
    EXPECT_EQ(countName("Boards"), "Boards.Count");
    const auto place = elementOf("BOARDS[7].Name", "Boards");
    ASSERT_TRUE(place);
    EXPECT_EQ(place->index, 7u);
    EXPECT_EQ(place->rest, ".Name");
    EXPECT_EQ(elementOf("Boards[0]", "Boards")->rest, "");
}

TEST(KitArrayName, FindsNoElementInOtherNames) {
    for (const char* other : {"", "Boards", "Boards[", "Boards[]", "Boards[1", "Boards[01]",
                              "Boards[-0]", "Boards[1048577]", "Boards.[1]", "Boards2[1]", "Bo",
                              "Boards[ 1]", "Boards[0x1]", "]Boards[1"}) {
        EXPECT_FALSE(elementOf(other, "Boards")) << other;
    }
}

TEST(KitKeptText, IsWhatADataFileGivesBack) {
    for (const char* good : {"", "a b", "50%", "x>y", "a\\b", "\xc3\xa4"}) {
        EXPECT_TRUE(canKeepValue(good)) << good;
    }
    for (const char* bad : {" a", "a ", "a<b", "a\nb", "\t", "\x7f"}) {
        EXPECT_FALSE(canKeepValue(bad)) << bad;
    }
    EXPECT_TRUE(canKeepValue(std::string(2047, 'x')));
    EXPECT_FALSE(canKeepValue(std::string(2048, 'x')));
    EXPECT_FALSE(canKeepValue(std::string_view("a\0b", 3)));
}

TEST(KitKeptText, OfANameIsATagToo) {
    EXPECT_TRUE(canKeepKeyword("Boards[1].Name"));
    for (const char* bad : {"", "a>b", "a\\b", "!a", "?a", "/a", " a", "a<b"}) {
        EXPECT_FALSE(canKeepKeyword(bad)) << bad;
        EXPECT_FALSE(canNameObject(bad)) << bad;
    }
    EXPECT_TRUE(canKeepKeyword(std::string(120, 'x')));
    EXPECT_FALSE(canKeepKeyword(std::string(121, 'x')));
}

TEST(KitKeptText, OfAnObjectsNameIsNoModulesFile) {
    EXPECT_TRUE(canNameObject("Board 1"));
    EXPECT_TRUE(canNameObject("x.bp"));
    EXPECT_TRUE(canNameObject("x.bpi.old"));
    for (const char* bad : {"x.bpi", "x.EMC", ".bpi"}) EXPECT_FALSE(canNameObject(bad)) << bad;
    EXPECT_TRUE(canNameObject(std::string(127, 'x')));
    EXPECT_FALSE(canNameObject(std::string(128, 'x')));
}

}  // namespace
}  // namespace oam::kit
