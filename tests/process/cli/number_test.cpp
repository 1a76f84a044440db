#include "number.h"

#include <gtest/gtest.h>

namespace oam::test {

TEST(Number, IsDecimalOrHexadecimal) {
    EXPECT_EQ(ParseNumber("0"), 0u);
    EXPECT_EQ(ParseNumber("1073741828"), 0x40000004u);
    EXPECT_EQ(ParseNumber("0x40000004"), 0x40000004u);
    EXPECT_EQ(ParseNumber("0XfFfFfFfF"), 0xffffffffu);
}

TEST(Number, IsNeverOctal) { EXPECT_EQ(ParseNumber("010"), 10u); }

TEST(Number, IsRefusedUnlessItIsOneWholeNumberOf32Bits) {
    for (const char* text : {"", "0x", "-1", "+1", " 1", "1 ", "1.5", "12a", "0x1g", "4294967296",
                             "0x100000000", "99999999999999999999"})
        EXPECT_EQ(ParseNumber(text), std::nullopt) << text;
}

}  // namespace oam::test
