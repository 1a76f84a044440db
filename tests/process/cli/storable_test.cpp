#include "storable.h"

#include <gtest/gtest.h>

namespace oam::test {

TEST(StorableValue, MayBeEmptyAndHoldNearlyEverything) {
    for (const char* value : {"", "x", "a > b & c \\ d", "gr\xc3\xbc\xc3\x9f", "/!?"})
        EXPECT_EQ(WhyValueIsLost(value), "") << value;
    EXPECT_EQ(WhyValueIsLost(std::string(2047, 'x')), "");
}

TEST(StorableValue, HasNoTagNoBlankEndNoControlCharacterAndAnEnd) {
    for (const char* value : {"a<b", "<", " x", "x ", " ", "\tx", "x\n", "a\nb", "a\x01", "\x7f"})
        EXPECT_NE(WhyValueIsLost(value), "") << value;
    EXPECT_NE(WhyValueIsLost(std::string("a\0b", 3)), "");
    EXPECT_NE(WhyValueIsLost(std::string(2048, 'x')), "");
}

TEST(StorableObjectName, IsNotEmptyAndNotLongerThanTheServicesBuffers) {
    EXPECT_EQ(WhyObjectNameIsLost("Board 1"), "");
    EXPECT_EQ(WhyObjectNameIsLost(std::string(127, 'n')), "");
    EXPECT_NE(WhyObjectNameIsLost(std::string(128, 'n')), "");
    EXPECT_NE(WhyObjectNameIsLost(""), "");
}

TEST(StorableObjectName, CannotBeMistakenForAnotherTag) {
    for (const char* name : {"a>b", "a<b", "a\\b", "/end", "!comment", "?instruction", " x", "x "})
        EXPECT_NE(WhyObjectNameIsLost(name), "") << name;
}

TEST(StorableBoardName, DoesNotMakeAnotherKindOfObject) {
    EXPECT_EQ(WhyBoardNameIsLost("x.bpi 1"), "");
    for (const char* name : {"x.bpi", "x.EMC", "supervisor"})
        EXPECT_NE(WhyBoardNameIsLost(name), "") << name;
}

TEST(StorableKeywordName, SharesItsRoomWithTheObjectsName) {
    EXPECT_EQ(WhyKeywordNameIsLost("Board 1", "Location.PCI.Bus?Type"), "");
    EXPECT_EQ(WhyKeywordNameIsLost(std::string(127, 'n'), std::string(126, 'k')), "");
    EXPECT_NE(WhyKeywordNameIsLost(std::string(127, 'n'), std::string(127, 'k')), "");
    EXPECT_NE(WhyKeywordNameIsLost("Board 1", ""), "");
    EXPECT_NE(WhyKeywordNameIsLost("Board 1", "?Type"), "");
}

}  // namespace oam::test
