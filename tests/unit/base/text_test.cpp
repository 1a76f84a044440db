// Owned texts, the rule for answering a text, and comparison without regard to case.
#include "base/text.h"

#include <gtest/gtest.h>

#include <climits>
#include <utility>

#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

OwnedText Owning(const char* text) {
    OwnedText owned;
    EXPECT_TRUE(owned.Assign(text));
    return owned;
}

TEST(OwnedText, StartsNull) {
    const OwnedText owned;
    EXPECT_TRUE(owned.IsNull());
    EXPECT_EQ(owned.Get(), nullptr);
    EXPECT_STREQ(owned.OrEmpty(), "");
}

TEST(OwnedText, KeepsACopyOfItsOwn) {
    char source[] = "Board 1";
    OwnedText owned = Owning(source);
    source[0] = 'X';
    EXPECT_STREQ(owned.Get(), "Board 1");
}

TEST(OwnedText, TellsEmptyFromNull) {
    OwnedText owned = Owning("");
    EXPECT_FALSE(owned.IsNull());
    EXPECT_STREQ(owned.Get(), "");
    EXPECT_TRUE(owned.Assign(nullptr));
    EXPECT_TRUE(owned.IsNull());
}

TEST(OwnedText, JoinsTwoTexts) {
    OwnedText owned;
    EXPECT_TRUE(owned.Join("Name?", "Type"));
    EXPECT_STREQ(owned.Get(), "Name?Type");
    EXPECT_TRUE(owned.Join("", "x"));
    EXPECT_STREQ(owned.Get(), "x");
    EXPECT_TRUE(owned.Join(std::string_view(), std::string_view()));
    EXPECT_STREQ(owned.Get(), "");
}

TEST(OwnedText, MovesWithoutCopying) {
    OwnedText first = Owning("first");
    const char* bytes = first.Get();
    OwnedText second(std::move(first));
    EXPECT_EQ(second.Get(), bytes);
    OwnedText third = Owning("third");
    third = std::move(second);
    EXPECT_EQ(third.Get(), bytes);
    OwnedText& itself = third;
    third = std::move(itself);
    EXPECT_STREQ(third.Get(), "first");
}

TEST(OwnedText, IsNullWhenTheCopyFindsNoMemory) {
    OwnedText owned = Owning("old");
    {
        const AllocationFuse fuse(1);
        EXPECT_FALSE(owned.Assign("new"));
    }
    EXPECT_TRUE(owned.IsNull());
    EXPECT_STREQ(owned.OrEmpty(), "");
}

TEST(CopyText, NeedsRoomForTheTerminator) {
    char buffer[8] = "before";
    EXPECT_EQ(CopyText("four", buffer, 4), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "before");
    EXPECT_EQ(CopyText("four", buffer, 5), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "four");
}

TEST(CopyText, OnlyAsksWithANullBuffer) {
    EXPECT_EQ(CopyText("a long text", nullptr, 0), OAM_SUCCESS);
}

TEST(CopyText, RefusesABufferWithoutAnyRoom) {
    char buffer[1] = {'x'};
    EXPECT_EQ(CopyText("", buffer, 0), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(buffer[0], 'x');
    EXPECT_EQ(CopyText("", buffer, 1), OAM_SUCCESS);
    EXPECT_EQ(buffer[0], '\0');
}

TEST(CopyText, TakesNullForTheEmptyText) {
    char buffer[4] = "old";
    EXPECT_EQ(CopyText(nullptr, buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "");
}

TEST(CopyNumber, NeedsTwelveBytesWhateverTheNumber) {
    char buffer[16] = "before";
    EXPECT_EQ(CopyNumber(0, buffer, 11), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "before");
    EXPECT_EQ(CopyNumber(0, buffer, 12), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "0");
    EXPECT_EQ(CopyNumber(7, nullptr, 0), OAM_SUCCESS);
}

TEST(CopyNumber, WritesTheLongestNumberIntoTwelveBytes) {
    char buffer[12];
    EXPECT_EQ(CopyNumber(INT_MIN, buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "-2147483648");
}

TEST(CopyCut, CutsAndAlwaysTerminates) {
    char buffer[5] = "....";
    CopyCut("1234", buffer, sizeof buffer);
    EXPECT_STREQ(buffer, "1234");
    CopyCut("12345", buffer, sizeof buffer);
    EXPECT_STREQ(buffer, "1234");
    CopyCut("", buffer, sizeof buffer);
    EXPECT_STREQ(buffer, "");
    CopyCut(nullptr, buffer, sizeof buffer);
    EXPECT_STREQ(buffer, "");
}

TEST(EqualNoCase, ComparesWholeTexts) {
    EXPECT_TRUE(EqualNoCase("Location.PCI.Bus", "location.pci.BUS"));
    EXPECT_FALSE(EqualNoCase("Name", "Names"));
    EXPECT_FALSE(EqualNoCase("Names", "Name"));
    EXPECT_TRUE(EqualNoCase(nullptr, ""));
}

TEST(StartsWithNoCase, ComparesTheStartOnly) {
    EXPECT_TRUE(StartsWithNoCase("VERSION.Major", "Version"));
    EXPECT_TRUE(StartsWithNoCase("versions", "Version"));
    EXPECT_FALSE(StartsWithNoCase("Versio", "Version"));
    EXPECT_TRUE(StartsWithNoCase("", ""));
}

TEST(LastExtension, BeginsAtTheLastDot) {
    EXPECT_STREQ(LastExtension("x.bpi.bak"), ".bak");
    EXPECT_STREQ(LastExtension("x.BPI"), ".BPI");
    EXPECT_STREQ(LastExtension(".xmo"), ".xmo");
    EXPECT_STREQ(LastExtension("x."), ".");
    EXPECT_STREQ(LastExtension("x"), "");
    EXPECT_STREQ(LastExtension(""), "");
}

}  // namespace
}  // namespace oam::test
