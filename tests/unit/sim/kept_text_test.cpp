#include "kept_text.h"

#include <gtest/gtest.h>

#include <string>

namespace oam::sim {
namespace {

TEST(KeptText, KeepsEmptyValuesInnerBlanksAndForeignLetters) {
    for (const auto* value : {"", "a b", "a > b", "\xc3\xa4", "\\", "50%s"}) {
        EXPECT_TRUE(canKeepValue(value)) << value;
    }
    EXPECT_TRUE(canKeepValue(std::string(2047, 'x')));
}

TEST(KeptText, RefusesValuesThatWouldComeBackChanged) {
    for (const auto* value : {" a", "a ", "a\n", "\ta", "a<b",
                              "a\x01"
                              "b",
                              "a\x7f"}) {
        EXPECT_FALSE(canKeepValue(value)) << value;
    }
    EXPECT_FALSE(canKeepValue(std::string(2048, 'x')));
    EXPECT_FALSE(canKeepValue(std::string_view("a\0b", 3)));
}

TEST(KeptText, RefusesKeywordsThatTheReaderTakesForSomethingElse) {
    EXPECT_TRUE(canKeepKeyword("Location.PCI.Bus"));
    for (const auto* keyword : {"", "a>b", "a<b", "a\\b", "!a", "?a", "/a", " a"}) {
        EXPECT_FALSE(canKeepKeyword(keyword)) << keyword;
    }
    EXPECT_TRUE(canKeepKeyword(std::string(120, 'x')));
    EXPECT_FALSE(canKeepKeyword(std::string(121, 'x')));
}

TEST(KeptText, RefusesNamesOfLoadedFilesForObjects) {
    EXPECT_TRUE(canNameObject("Board 1"));
    EXPECT_TRUE(canNameObject("x.bpi.old"));
    EXPECT_FALSE(canNameObject("x.BPI"));
    EXPECT_FALSE(canNameObject(".emc"));
    EXPECT_TRUE(canNameObject(std::string(127, 'x')));
    EXPECT_FALSE(canNameObject(std::string(128, 'x')));
}

}  // namespace
}  // namespace oam::sim
