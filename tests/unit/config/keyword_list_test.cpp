// The keyword list of one object.
#include <gmock/gmock.h>

#include "objects/keyword.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;

class KeywordList : public ::testing::Test {
  protected:
    void Fill(int count) {
        for (int i = 0; i < count; ++i) {
            ASSERT_EQ(list.Set(("k" + std::to_string(i)).c_str(), "v", true), OAM_SUCCESS);
        }
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (int i = 0; i < list.Count(); ++i) names.emplace_back(list.At(i)->Name());
        return names;
    }
    std::string Value(const char* name) const {
        char buffer[64] = "untouched";
        EXPECT_EQ(list.Get(name, buffer, sizeof buffer), OAM_SUCCESS) << name;
        return buffer;
    }

    CArrayPtrsToKeyword list;
};

TEST_F(KeywordList, StartsWithoutSlots) {
    int index = -1;
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Capacity(), 0);
    EXPECT_FALSE(list.Find("Name", &index));
    EXPECT_EQ(index, 0);
}

TEST_F(KeywordList, SetChangesTheOneEntryAndKeepsItsSpelling) {
    EXPECT_EQ(list.Set("Name", "first", true), OAM_SUCCESS);
    EXPECT_EQ(list.Set("name", "second", false), OAM_SUCCESS);
    EXPECT_EQ(list.Set("NAME", "third", true), OAM_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre("Name"));
    EXPECT_EQ(Value("nAmE"), "third");
}

TEST_F(KeywordList, SetWithoutCreationAddsNothing) {
    EXPECT_EQ(list.Set("Name", "x", false), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Capacity(), 0);
}

TEST_F(KeywordList, SetInsertsInOrderWithoutRegardToCase) {
    for (const char* name : {"Version.Minor", "autostart", "Name", "AutoStop", "Version.Major"}) {
        EXPECT_EQ(list.Set(name, "x", true), OAM_SUCCESS);
    }
    EXPECT_THAT(Names(), ElementsAre("autostart", "AutoStop", "Name", "Version.Major",
                                     "Version.Minor"));
    int index;
    EXPECT_TRUE(list.Find("NAME", &index));
    EXPECT_EQ(index, 2);
    EXPECT_FALSE(list.Find("Product", &index));
    EXPECT_EQ(index, 3);
}

TEST_F(KeywordList, GetNeedsRoomForTheTerminator) {
    EXPECT_EQ(list.Set("Bus", "1234", true), OAM_SUCCESS);
    char buffer[8] = "before";
    EXPECT_EQ(list.Get("Bus", buffer, 4), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "before");
    EXPECT_EQ(list.Get("Bus", buffer, 5), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "1234");
}

TEST_F(KeywordList, GetWithANullBufferOnlyAsks) {
    EXPECT_EQ(list.Set("Bus", "3", true), OAM_SUCCESS);
    EXPECT_EQ(list.Get("bus", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(list.Get("Slot", nullptr, 0), OAMERR_NOT_FOUND);
}

TEST_F(KeywordList, NullValueReadsAsTheEmptyText) {
    EXPECT_EQ(list.Set("Bus", nullptr, true), OAM_SUCCESS);
    EXPECT_EQ(list.At(0)->Value(), nullptr);
    EXPECT_EQ(Value("Bus"), "");
    EXPECT_EQ(list.Set("Bus", "3", false), OAM_SUCCESS);
    EXPECT_EQ(list.Set("Bus", nullptr, false), OAM_SUCCESS);
    EXPECT_EQ(Value("Bus"), "");
}

TEST_F(KeywordList, QualifiersAreEntriesOfTheirOwn) {
    for (const char* name : {"Bus?Type", "Bus", "Bus?Max", "Bus.Count"}) {
        EXPECT_EQ(list.Set(name, "x", true), OAM_SUCCESS);
    }
    EXPECT_THAT(Names(), ElementsAre("Bus", "Bus.Count", "Bus?Max", "Bus?Type"));
    EXPECT_EQ(list.Remove("BUS"), OAM_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre("Bus.Count", "Bus?Max", "Bus?Type"));
    EXPECT_EQ(list.Remove("Bus"), OAMERR_NOT_FOUND);
}

TEST_F(KeywordList, SeventeenthEntryTakesASecondStepAndGivesItBack) {
    Fill(16);
    EXPECT_EQ(list.Capacity(), 16);
    Fill(17);
    EXPECT_EQ(list.Count(), 17);
    EXPECT_EQ(list.Capacity(), 32);
    EXPECT_EQ(list.Remove("k3"), OAM_SUCCESS);
    EXPECT_EQ(list.Capacity(), 16);
}

TEST_F(KeywordList, ShrinksToNoSlotsWhenTheLastEntryLeaves) {
    Fill(1);
    EXPECT_EQ(list.Capacity(), 16);
    EXPECT_EQ(list.Remove("k0"), OAM_SUCCESS);
    EXPECT_EQ(list.Capacity(), 0);
    EXPECT_EQ(list.Remove("k0"), OAMERR_NOT_FOUND);
}

TEST_F(KeywordList, RemoveAllKeepsTheStep) {
    Fill(20);
    list.RemoveAll();
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Capacity(), 0);
    Fill(1);
    EXPECT_EQ(list.Capacity(), 16);
}

// ---- Without memory

TEST_F(KeywordList, CannotAddWithoutMemoryForTheEntryOrItsName) {
    Fill(2);
    for (int nth : {1, 2}) {
        const AllocationFuse fuse(nth);
        EXPECT_EQ(list.Set("new", "v", true), OAMERR_NOT_ENOUGH_MEMORY);
        EXPECT_THAT(Names(), ElementsAre("k0", "k1"));
    }
}

TEST_F(KeywordList, AddsANullValueWithoutMemoryForTheValue) {
    {
        const AllocationFuse fuse(3);
        EXPECT_EQ(list.Set("new", "v", true), OAM_SUCCESS);
    }
    EXPECT_EQ(list.At(0)->Value(), nullptr);
    EXPECT_EQ(Value("new"), "");
}

TEST_F(KeywordList, CannotGrowWithoutMemory) {
    Fill(16);
    const std::vector<std::string> before = Names();
    const AllocationFuse fuse(4);
    EXPECT_EQ(list.Set("new", "v", true), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_TRUE(fuse.HasBlown());
    EXPECT_EQ(Names(), before);
    EXPECT_EQ(list.Capacity(), 16);
}

TEST_F(KeywordList, LosesTheOldValueWithoutMemoryForTheNew) {
    EXPECT_EQ(list.Set("Bus", "old", true), OAM_SUCCESS);
    {
        const AllocationFuse fuse(1);
        EXPECT_EQ(list.Set("Bus", "new", false), OAM_SUCCESS);
    }
    EXPECT_EQ(list.At(0)->Value(), nullptr);
}

TEST_F(KeywordList, CannotShrinkWithoutMemory) {
    Fill(17);
    {
        const AllocationFuse fuse(1);
        EXPECT_EQ(list.Remove("k3"), OAMERR_NOT_ENOUGH_MEMORY);
    }
    EXPECT_EQ(list.Count(), 17);
    EXPECT_EQ(list.Capacity(), 32);
    EXPECT_EQ(Value("k3"), "v");
}

TEST(Keyword, KeepsNullTextsNull) {
    const CKeyword keyword(nullptr, nullptr);
    EXPECT_FALSE(keyword.HasName());
    EXPECT_STREQ(keyword.Name(), "");
    EXPECT_EQ(keyword.Value(), nullptr);
}

}  // namespace
}  // namespace oam::test
