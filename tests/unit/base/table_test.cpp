// The tables of owned pointers: order, growth in steps, and what a failed allocation leaves.
#include "objects/table.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "support/allocation_fuse.h"
#include "zol/zol.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

int alive = 0;

struct Entry {
    explicit Entry(std::string text) : name(std::move(text)) { ++alive; }
    ~Entry() { --alive; }
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

    const char* Name() const { return name.c_str(); }
    static int Compare(const Entry& entry, const char* key) {
        return zolStricmp(entry.Name(), key);
    }

    std::string name;
};

class Table : public ::testing::Test {
  protected:
    Table() { alive = 0; }

    oam_result Insert(const std::string& name) {
        return table.InsertNew(name.c_str(), [&] { return new (std::nothrow) Entry(name); });
    }
    void InsertNumbered(int from, int to) {
        const int step = from <= to ? 1 : -1;
        for (int i = from; i != to + step; i += step) {
            ASSERT_EQ(Insert(Numbered(i)), OAM_SUCCESS);
        }
    }
    static std::string Numbered(int number) {
        return (number < 10 ? "n0" : "n") + std::to_string(number);
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (int i = 0; i < table.Count(); ++i) names.push_back(table.At(i)->name);
        return names;
    }
    int PositionOf(const char* name, bool found) const {
        int index = -1;
        EXPECT_EQ(table.FindByName(name, &index), found) << name;
        return index;
    }

    NamedTable<Entry> table{0, kTableGrowth};
};

TEST_F(Table, StartsWithoutSlots) {
    EXPECT_EQ(table.Count(), 0);
    EXPECT_EQ(table.Capacity(), 0);
    EXPECT_EQ(PositionOf("any", false), 0);
    EXPECT_EQ(table.Find("any"), nullptr);
    EXPECT_EQ(table.Remove("any"), OAMERR_NOT_FOUND);
}

TEST(TableOfAnySize, KeptTheInitialSizeIsIgnored) {
    const NamedTable<Entry> table(100, kTableGrowth);
    EXPECT_EQ(table.Capacity(), 0);
}

TEST_F(Table, FindsMatchesAndInsertionPositionsWithoutRegardToCase) {
    for (const char* name : {"Delta", "alpha", "CHARLIE"}) EXPECT_EQ(Insert(name), OAM_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre("alpha", "CHARLIE", "Delta"));
    EXPECT_EQ(PositionOf("ALPHA", true), 0);
    EXPECT_EQ(PositionOf("charlie", true), 1);
    EXPECT_EQ(PositionOf("delta", true), 2);
    EXPECT_EQ(PositionOf("a", false), 0);
    EXPECT_EQ(PositionOf("bravo", false), 1);
    EXPECT_EQ(PositionOf("charlie2", false), 2);
    EXPECT_EQ(PositionOf("echo", false), 3);
}

TEST_F(Table, RefusesASecondRecordOfTheName) {
    EXPECT_EQ(Insert("BOARD1"), OAM_SUCCESS);
    EXPECT_EQ(Insert("Board1"), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(Names(), ElementsAre("BOARD1"));
    EXPECT_EQ(alive, 1);
}

TEST_F(Table, GrowsBySixteenSlotsWhenItIsFull) {
    InsertNumbered(1, 1);
    EXPECT_EQ(table.Capacity(), 16);
    InsertNumbered(2, 16);
    EXPECT_EQ(table.Capacity(), 16);
    InsertNumbered(17, 17);
    EXPECT_EQ(table.Capacity(), 32);
    EXPECT_EQ(table.Count(), 17);
}

TEST_F(Table, ShrinksAsSoonAsTheRestFitsInOneStepLess) {
    InsertNumbered(17, 1);
    EXPECT_EQ(table.Capacity(), 32);
    EXPECT_EQ(table.Remove("n09"), OAM_SUCCESS);
    EXPECT_EQ(table.Count(), 16);
    EXPECT_EQ(table.Capacity(), 16);
    for (int i = 1; i <= 17; ++i) {
        if (i == 9) continue;
        EXPECT_EQ(table.Capacity(), 16) << i;
        EXPECT_EQ(table.Remove(Numbered(i).c_str()), OAM_SUCCESS);
    }
    EXPECT_EQ(table.Count(), 0);
    EXPECT_EQ(table.Capacity(), 0);
    EXPECT_EQ(alive, 0);
}

TEST_F(Table, KeepsTheOrderWhileItGrowsAndShrinksInTheMiddle) {
    for (int i = 40; i >= 2; i -= 2) ASSERT_EQ(Insert(Numbered(i)), OAM_SUCCESS);
    for (int i = 1; i <= 39; i += 2) ASSERT_EQ(Insert(Numbered(i)), OAM_SUCCESS);
    EXPECT_EQ(table.Capacity(), 48);
    for (int i = 1; i <= 40; ++i) EXPECT_EQ(table.At(i - 1)->name, Numbered(i));
    for (int i = 3; i <= 40; ++i) ASSERT_EQ(table.Remove(Numbered(i).c_str()), OAM_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre("n01", "n02"));
    EXPECT_EQ(table.Capacity(), 16);
}

TEST_F(Table, RemoveAllGivesEverythingBackAndLeavesAUsableTable) {
    InsertNumbered(1, 20);
    table.RemoveAll();
    EXPECT_EQ(table.Count(), 0);
    EXPECT_EQ(table.Capacity(), 0);
    EXPECT_EQ(alive, 0);
    table.RemoveAll();
    InsertNumbered(1, 1);
    EXPECT_EQ(table.Capacity(), 16);
}

TEST_F(Table, OwnsItsRecordsToItsEnd) {
    {
        NamedTable<Entry> other(0, kTableGrowth);
        EXPECT_EQ(other.InsertNew("x", [] { return new Entry("x"); }), OAM_SUCCESS);
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST_F(Table, TakeAtLeavesTheRecordToTheCaller) {
    InsertNumbered(1, 2);
    const std::unique_ptr<Entry> taken(table.At(0));
    EXPECT_EQ(table.TakeAt(0), OAM_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre("n02"));
    EXPECT_EQ(alive, 2);
}

TEST_F(Table, MovesARecordToThePositionThatASearchGave) {
    for (const char* name : {"b", "d", "f", "h"}) ASSERT_EQ(Insert(name), OAM_SUCCESS);
    table.Move(0, 3);
    EXPECT_THAT(Names(), ElementsAre("d", "f", "b", "h")) << "up, to before the record at 3";
    table.Move(2, 0);
    EXPECT_THAT(Names(), ElementsAre("b", "d", "f", "h")) << "down";
    table.Move(1, 4);
    EXPECT_THAT(Names(), ElementsAre("b", "f", "h", "d")) << "to the end";
    table.Move(2, 2);
    table.Move(2, 3);
    EXPECT_THAT(Names(), ElementsAre("b", "f", "h", "d")) << "its own place, twice";
}

TEST_F(Table, IsAsItWasWhenThereIsNoMemoryForARecord) {
    InsertNumbered(1, 3);
    {
        const AllocationFuse fuse(1);
        EXPECT_EQ(Insert("n00"), OAMERR_NOT_ENOUGH_MEMORY);
    }
    EXPECT_THAT(Names(), ElementsAre("n01", "n02", "n03"));
    EXPECT_EQ(alive, 3);
}

TEST_F(Table, IsAsItWasWhenThereIsNoMemoryToGrow) {
    InsertNumbered(1, 16);
    const std::vector<std::string> before = Names();
    EXPECT_EQ(FailEachAllocation([&] { return Insert("n00"); },
                                 [&](oam_result result) {
                                     EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_EQ(Names(), before);
                                     EXPECT_EQ(table.Capacity(), 16);
                                     EXPECT_EQ(alive, 16);
                                 }),
              OAM_SUCCESS);
    EXPECT_EQ(table.Capacity(), 32);
    EXPECT_EQ(alive, 17);
}

TEST_F(Table, IsAsItWasWhenThereIsNoMemoryToShrink) {
    InsertNumbered(1, 1);
    EXPECT_EQ(FailEachAllocation([&] { return table.Remove("n01"); },
                                 [&](oam_result result) {
                                     EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_THAT(Names(), ElementsAre("n01"));
                                     EXPECT_EQ(table.Capacity(), 16);
                                     EXPECT_EQ(alive, 1);
                                 }),
              OAM_SUCCESS);
    EXPECT_THAT(Names(), IsEmpty());
    EXPECT_EQ(alive, 0);
}

TEST_F(Table, RecordThatMustGoGoesWithoutMemoryToShrink) {
    InsertNumbered(1, 17);
    {
        const AllocationFuse fuse(1);
        table.RemoveSurely(8);
        EXPECT_TRUE(fuse.HasBlown());
    }
    EXPECT_EQ(table.Count(), 16);
    EXPECT_EQ(table.Capacity(), 32) << "the slots are kept";
    EXPECT_EQ(alive, 16);
    EXPECT_EQ(PositionOf("n09", false), 8);
    EXPECT_EQ(PositionOf("n17", true), 15);
    table.RemoveSurely(0);
    EXPECT_EQ(table.Capacity(), 16) << "given back as soon as there is memory";
}

}  // namespace
}  // namespace oam::test
