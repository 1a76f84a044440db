#include "foreign_text.h"

#include <gtest/gtest.h>

namespace oam::test {

TEST(ForeignText, LeavesOrdinaryTextAsItIs) {
    EXPECT_EQ(Shown("Board 1: gr\xc3\xbc\xc3\x9f dich \xe2\x82\xac \xf0\x9f\x99\x82"),
              "Board 1: gr\xc3\xbc\xc3\x9f dich \xe2\x82\xac \xf0\x9f\x99\x82");
}

TEST(ForeignText, EscapesControlCharacters) {
    EXPECT_EQ(Shown("a\nb\tc\rd"), "a\\nb\\tc\\rd");
    EXPECT_EQ(Shown("\x1b[31mred\x7f"), "\\x1b[31mred\\x7f");
    EXPECT_EQ(Shown(std::string("nul\0!", 5)), "nul\\x00!");
}

TEST(ForeignText, EscapesTheControlCharactersAboveAscii) {
    EXPECT_EQ(Shown("\xc2\x9b"
                    "2J"),
              "\\u009b2J");
    EXPECT_EQ(Shown("\xe2\x80\xae"
                    "txt.exe"),
              "\\u202etxt.exe");
}

TEST(ForeignText, ShowsWhatIsNotUtf8ByteForByte) {
    EXPECT_EQ(Shown("caf\xe9"), "caf\\xe9");
    EXPECT_EQ(Shown("cut \xe2\x82"), "cut \\xe2\\x82");
    EXPECT_EQ(Shown("\xc0\xaf"), "\\xc0\\xaf");                    // overlong
    EXPECT_EQ(Shown("\xed\xa0\x80"), "\\xed\\xa0\\x80");           // a surrogate
    EXPECT_EQ(Shown("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");  // above U+10FFFF
    EXPECT_EQ(Shown("\xff\xfe"), "\\xff\\xfe");
}

TEST(ForeignText, DoublesABackslashSoThatEscapesCannotBeForged) {
    EXPECT_EQ(Shown("a\\nb"), "a\\\\nb");
    EXPECT_NE(Shown("a\\nb"), Shown("a\nb"));
}

TEST(ForeignText, TakesOneColumnForEachCharacter) {
    EXPECT_EQ(ShownWidth(""), 0u);
    EXPECT_EQ(ShownWidth("gr\xc3\xbc\xc3\x9f"), 4u);
    EXPECT_EQ(ShownWidth(Shown("\n")), 2u);
}

}  // namespace oam::test
