// The board table: look-ups, free numbers, and what a refused insertion leaves.
#include "board/board_table.h"

#include "board_room.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class BoardTable : public ::testing::Test {
  protected:
    oam_result Insert(const char* name, unsigned number,
                      const std::function<void(BoardValues&)>& change = {}) {
        BoardValues values;
        values.number = number;
        if (change) change(values);
        return table.Insert(name, nullptr, std::move(values));
    }
    static void Set(OwnedText& text, const char* value) { EXPECT_TRUE(text.Assign(value)); }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (int i = 0; i < table.Count(); ++i) names.emplace_back(table.At(i)->Name());
        return names;
    }
    // The index that a look-up writes, behind "found " or "missed ".
    template <class Find>
    static std::string Found(Find find) {
        int index = -1;
        const bool found = find(&index);
        return (found ? "found " : "missed ") + std::to_string(index);
    }
    unsigned FreeNumber() const {
        unsigned number = 99;
        EXPECT_EQ(table.CreateUniqueNumber(&number), OAM_SUCCESS);
        return number;
    }

    CArrayPtrsToBoardID table{0, kTableGrowth};
};

TEST_F(BoardTable, EmptyFindsNothingAndHasTheNumberZeroFree) {
    EXPECT_EQ(Found([&](int* index) { return table.FindByName("B", index); }), "missed 0");
    EXPECT_EQ(Found([&](int* index) { return table.FindByNumber(0, index); }), "missed 0");
    EXPECT_EQ(FreeNumber(), 0u);
    EXPECT_EQ(table.Capacity(), 0);
}

TEST_F(BoardTable, LowestFreeNumberIsTheNext) {
    EXPECT_EQ(Insert("a", 0), OAM_SUCCESS);
    EXPECT_EQ(Insert("b", 2), OAM_SUCCESS);
    EXPECT_EQ(Insert("c", 3), OAM_SUCCESS);
    EXPECT_EQ(FreeNumber(), 1u);
    EXPECT_EQ(Insert("d", 1), OAM_SUCCESS);
    EXPECT_EQ(FreeNumber(), 4u);
    EXPECT_EQ(table.Remove("b"), OAM_SUCCESS);
    EXPECT_EQ(FreeNumber(), 2u);
}

TEST_F(BoardTable, LargeNumbersLeaveTheLowOnesFree) {
    EXPECT_EQ(Insert("a", 0xFFFFFFFF), OAM_SUCCESS);
    EXPECT_EQ(Insert("b", 3), OAM_SUCCESS);
    EXPECT_EQ(FreeNumber(), 0u);
}

TEST_F(BoardTable, IsSortedByNameWithoutRegardToCase) {
    for (const auto& [name, number] : {std::pair("delta", 1u), {"ALPHA", 2u}, {"Charlie", 3u}}) {
        EXPECT_EQ(Insert(name, number), OAM_SUCCESS);
    }
    EXPECT_THAT(Names(), ElementsAre("ALPHA", "Charlie", "delta"));
    EXPECT_EQ(Found([&](int* index) { return table.FindByName("CHARLIE", index); }), "found 1");
    EXPECT_EQ(Found([&](int* index) { return table.FindByName("bravo", index); }), "missed 1");
}

TEST_F(BoardTable, RefusesATakenNumberOrName) {
    EXPECT_EQ(Insert("BOARD1", 5), OAM_SUCCESS);
    EXPECT_EQ(Insert("Board1", 6), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(Insert("Board2", 5), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(Names(), ElementsAre("BOARD1"));
}

TEST_F(BoardTable, NewBoardIsIdleAndHasAnIdentityOfItsOwn) {
    EXPECT_EQ(Insert("a", 0), OAM_SUCCESS);
    EXPECT_EQ(Insert("b", 1), OAM_SUCCESS);
    EXPECT_EQ(table.At(0)->state, BOARD_STATE_IDLE);
    EXPECT_NE(table.At(0)->identity, table.At(1)->identity);
    const unsigned long identity = table.At(1)->identity;
    EXPECT_EQ(Found([&](int* index) { return table.FindByIdentity(identity, index); }), "found 1");
    EXPECT_EQ(table.Remove("b"), OAM_SUCCESS);
    EXPECT_EQ(Insert("b", 1), OAM_SUCCESS);
    EXPECT_NE(table.At(1)->identity, identity) << "another board of the same name";
    EXPECT_EQ(Found([&](int* index) { return table.FindByIdentity(identity, index); }), "missed 2");
}

TEST_F(BoardTable, FindsTheFirstOfSeveralAndWritesTheCountOnAMiss) {
    const auto fill = [](BoardValues& values) {
        Set(values.driverName, "AG");
        Set(values.driverBoardId, "Id");
        Set(values.serialNumber, "Ser");
        Set(values.product, "Prod");
        Set(values.clockMode, "Master");
        values.pciBus = 1;
        values.pciSlot = 2;
        values.pciIOAddress = 3;
        values.cpciShelf = 4;
        values.cpciSlot = 5;
        values.autoStart = true;
        values.autoStop = true;
    };
    EXPECT_EQ(Insert("a", 0), OAM_SUCCESS);
    EXPECT_EQ(Insert("b", 1, fill), OAM_SUCCESS);
    EXPECT_EQ(Insert("c", 2, fill), OAM_SUCCESS);
    using Find = std::function<bool(int*)>;
    const std::pair<Find, Find> rows[] = {
        {[&](int* i) { return table.FindByNumber(1, i); },
         [&](int* i) { return table.FindByNumber(9, i); }},
        {[&](int* i) { return table.FindByDriverIDs("ag", "ID", i); },
         [&](int* i) { return table.FindByDriverIDs("AG", "Other", i); }},
        {[&](int* i) { return table.FindByBusSlot(1, 2, i); },
         [&](int* i) { return table.FindByBusSlot(2, 1, i); }},
        {[&](int* i) { return table.FindByIOAddress(3, i); },
         [&](int* i) { return table.FindByIOAddress(4, i); }},
        {[&](int* i) { return table.FindBySerialNumber("SER", i); },
         [&](int* i) { return table.FindBySerialNumber("Se", i); }},
        {[&](int* i) { return table.FindByProduct("pROD", i); },
         [&](int* i) { return table.FindByProduct("Product", i); }},
        {[&](int* i) { return table.FindByClockMode("MASTER", i); },
         [&](int* i) { return table.FindByClockMode("Slave", i); }},
        {[&](int* i) { return table.FindByShelfSlot(4, 5, i); },
         [&](int* i) {
             return table.FindByShelfSlot(5, 4, i) || table.FindByShelfSlot(4, 4, i);
         }},
        {[&](int* i) { return table.FindByAutoStart(true, i); }, {}},
        {[&](int* i) { return table.FindByAutoStop(true, i); }, {}}};
    for (const auto& [hit, miss] : rows) {
        EXPECT_EQ(Found(hit), "found 1");
        if (miss) {
            EXPECT_EQ(Found(miss), "missed 3");
        }
    }
    EXPECT_EQ(Found([&](int* i) { return table.FindByAutoStart(false, i); }), "found 0");
    EXPECT_EQ(Found([&](int* i) { return table.FindByAutoStop(false, i); }), "found 0");
}

TEST_F(BoardTable, BoardWithoutCompactPciIsInShelfAndSlot32) {
    EXPECT_EQ(Insert("a", 0), OAM_SUCCESS);
    EXPECT_EQ(Found([&](int* i) { return table.FindByShelfSlot(32, 32, i); }), "found 0");
}

TEST_F(BoardTable, FindsAnyOfTheValidMacAddresses) {
    const auto fill = [](BoardValues& values) {
        const char texts[2][OAM_MAC_TEXT_SIZE] = {"00:11", "aa:bb"};
        values.SetMACAddress(texts, 2);
    };
    EXPECT_EQ(Insert("a", 0), OAM_SUCCESS);
    EXPECT_EQ(Insert("b", 1, fill), OAM_SUCCESS);
    EXPECT_EQ(Found([&](int* i) { return table.FindByMACAddress("AA:BB", i); }), "found 1");
    EXPECT_EQ(Found([&](int* i) { return table.FindByMACAddress("00:11", i); }), "found 1");
    EXPECT_EQ(Found([&](int* i) { return table.FindByMACAddress("", i); }), "missed 2")
        << "neither a board without addresses nor an unused entry";
}

TEST_F(BoardTable, GrowsBySixteenAndGivesTheSlotsBack) {
    for (unsigned i = 0; i < 17; ++i) {
        ASSERT_EQ(Insert(("b" + std::to_string(i)).c_str(), i), OAM_SUCCESS);
    }
    EXPECT_EQ(table.Capacity(), 32);
    EXPECT_EQ(table.Remove("b0"), OAM_SUCCESS);
    EXPECT_EQ(table.Capacity(), 16);
    for (unsigned i = 1; i < 17; ++i) {
        ASSERT_EQ(table.Remove(("b" + std::to_string(i)).c_str()), OAM_SUCCESS);
    }
    EXPECT_EQ(table.Capacity(), 0);
}

TEST_F(BoardTable, OnlyEntryLeavesNoSlots) {
    EXPECT_EQ(Insert("a", 0), OAM_SUCCESS);
    EXPECT_EQ(table.Capacity(), 16);
    EXPECT_EQ(table.Remove("A"), OAM_SUCCESS);
    EXPECT_EQ(table.Capacity(), 0);
    EXPECT_EQ(table.Remove("A"), OAMERR_NOT_FOUND);
}

TEST_F(BoardTable, IsAsItWasWhenThereIsNoMemory) {
    for (unsigned i = 0; i < 16; ++i) {
        ASSERT_EQ(Insert(("b" + std::to_string(i)).c_str(), i), OAM_SUCCESS);
    }
    const std::vector<std::string> before = Names();
    EXPECT_EQ(FailEachAllocation([&] { return Insert("a", 99); },
                                 [&](oam_result result) {
                                     EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_EQ(Names(), before);
                                     EXPECT_EQ(table.Capacity(), 16);
                                 }),
              OAM_SUCCESS);
    EXPECT_EQ(FailEachAllocation([&] { return table.Remove("a"); },
                                 [&](oam_result result) {
                                     EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_EQ(table.Count(), 17);
                                     EXPECT_STREQ(table.At(0)->Name(), "a");
                                 }),
              OAM_SUCCESS);
    unsigned number = 42;
    const AllocationFuse fuse(1);
    EXPECT_EQ(table.CreateUniqueNumber(&number), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(number, 42u);
}

class BoardPlugin : public BoardRoom {};

TEST_F(BoardPlugin, IsFoundThroughItsBoard) {
    const CPlugin* plugin = AddPlugin();
    AddBoard("Served", 0, plugin);
    AddBoard("Unserved", 1, nullptr);
    PluginEntries entries;
    EXPECT_TRUE(getPluginFromBoardName("SERVED", &entries));
    EXPECT_EQ(entries.startBoard, NotedPlugin<1>::Entries().startBoard);
    EXPECT_FALSE(getPluginFromBoardName("Unserved", &entries));
    EXPECT_FALSE(getPluginFromBoardName("None", &entries));
    EXPECT_EQ(TableMutex::Depth(), 0);
}

TEST_F(BoardPlugin, ListOfBoardsIsInNameOrder) {
    EXPECT_EQ(BoardsGetCount(), 0);
    AddBoard("b", 0, nullptr);
    AddBoard("A", 1, nullptr);
    EXPECT_EQ(BoardsGetCount(), 2);
    EXPECT_STREQ(BoardsGetAt(0), "A");
    EXPECT_STREQ(BoardsGetAt(1), "b");
}

}  // namespace
}  // namespace oam::test
