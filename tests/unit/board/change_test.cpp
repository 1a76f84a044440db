// The board table's share of a commit: it keeps the table lock from validation on, and what is
// refused changes nothing.
#include <atomic>
#include <thread>

#include "board_room.h"
#include "oam/shadow.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class BoardChange : public BoardRoom {
  protected:
    BoardChange() {
        EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
        plugin = AddPlugin();
        for (const auto& [name, number] : {std::pair("B1", 1u), {"D2", 2u}, {"F3", 3u}}) {
            AddBoard(name, number, plugin);
        }
        doors.TakeCalls();
    }
    ~BoardChange() override { BoardIDsValidateChangesCleanup(); }

    // A pending change of the board "D2": the object as its keywords would be.
    void Pending(ConfigDoor::Entries entries) {
        entries.emplace("Name", "D2");
        entries.emplace("Number", "2");
        ConfigDoor::The().AddObject("D2", entries);
        handle = ConfigDoor::The().Open("D2");
    }
    oam_result Validate() { return BoardIDsValidateChanges("D2", handle); }
    // Validates and handles.
    void Change(ConfigDoor::Entries entries) {
        Pending(std::move(entries));
        ASSERT_EQ(Validate(), OAM_SUCCESS);
        BoardIDsHandleChanges("D2");
        EXPECT_EQ(TableMutex::Depth(), 0);
    }
    void ExpectRefused(ConfigDoor::Entries entries, oam_result expected) {
        Pending(std::move(entries));
        EXPECT_EQ(Validate(), expected);
        EXPECT_EQ(TableMutex::Depth(), 0);
        EXPECT_THAT(BoardNames(), ElementsAre("B1", "D2", "F3"));
        EXPECT_EQ(Board("D2").values.number, 2u);
        EXPECT_THAT(doors.CallsOf({"Publish"}), IsEmpty());
    }

    const CPlugin* plugin;
    unsigned long handle = 0;
};

TEST_F(BoardChange, KeepsTheTableFromValidationUntilHandling) {
    Pending({});
    EXPECT_EQ(Validate(), OAM_SUCCESS);
    EXPECT_EQ(TableMutex::Depth(), 1);
    BoardIDsHandleChanges("D2");
    EXPECT_EQ(TableMutex::Depth(), 0);
    BoardIDsValidateChangesCleanup();
    EXPECT_EQ(TableMutex::Depth(), 0) << "the registry's own clean-up is harmless";
}

TEST_F(BoardChange, KeepsOthersOutOfTheTableMeanwhile) {
    Pending({});
    EXPECT_EQ(Validate(), OAM_SUCCESS);
    std::atomic<bool> handled{false};
    std::atomic<bool> early{false};
    std::thread other([&] {
        const TableGuard hold;
        early = !handled;
    });
    handled = true;
    BoardIDsHandleChanges("D2");
    other.join();
    EXPECT_FALSE(early);
}

TEST_F(BoardChange, CleanUpGivesTheTableBackAndChangesNothing) {
    Pending({{"Location.PCI.Bus", "9"}, {"Name", "Other"}});
    EXPECT_EQ(Validate(), OAM_SUCCESS);
    BoardIDsValidateChangesCleanup();
    EXPECT_EQ(TableMutex::Depth(), 0);
    EXPECT_EQ(Board("D2").values.pciBus, 0u);
    EXPECT_THAT(BoardNames(), ElementsAre("B1", "D2", "F3"));
    EXPECT_THAT(doors.CallsOf({"Publish"}), IsEmpty());
}

TEST_F(BoardChange, OfAnObjectThatIsNoBoardOnlyTakesTheTable) {
    EXPECT_EQ(BoardIDsValidateChanges("Supervisor", 77), OAM_SUCCESS);
    EXPECT_EQ(TableMutex::Depth(), 1);
    EXPECT_THAT(doors.Calls(), IsEmpty());
    BoardIDsHandleChanges("Supervisor");
    EXPECT_EQ(TableMutex::Depth(), 1) << "the registry's clean-up gives it back";
    BoardIDsValidateChangesCleanup();
    EXPECT_EQ(TableMutex::Depth(), 0);
}

TEST_F(BoardChange, CopiesEveryValueAndPublishes) {
    const char* const mac = "NetworkInterface.Ethernet[0].MAC_Address";
    Change({{"Number", "22"},
            {"Driver.Name", "AG"},
            {"Driver.BoardId", "7"},
            {"Location.PCI.Bus", "1"},
            {"AutoStart", "yes"},
            {"XLaw", "ALAW"},
            {"Location.CPCI.Slot", "5"},
            {"NetworkInterface.Ethernet.Count", "1"},
            {mac, "aa:bb"}});
    const BoardValues& values = Board("D2").values;
    EXPECT_EQ(values.number, 22u);
    EXPECT_STREQ(values.driverName.Get(), "AG");
    EXPECT_EQ(values.pciBus, 1u);
    EXPECT_TRUE(values.autoStart);
    EXPECT_TRUE(values.xLaw);
    EXPECT_EQ(values.cpciSlot, 5u);
    EXPECT_STREQ(values.MacAddressAt(0), "aa:bb");
    EXPECT_THAT(doors.CallsOf({"Publish"}), ElementsAre("Publish(B1, D2, F3)"));
    EXPECT_EQ(ShadowDoor::The().published.at(1).number, 22u);
    EXPECT_EQ(ShadowDoor::The().published.at(1).isALaw, 1);
}

TEST_F(BoardChange, MissingKeywordGoesBackToItsDefault) {
    Change({{"Location.PCI.Bus", "1"}, {"Location.CPCI.Slot", "5"}, {"AutoStart", "Yes"}});
    Change({});
    EXPECT_EQ(Board("D2").values.pciBus, 0u);
    EXPECT_EQ(Board("D2").values.cpciSlot, 32u);
    EXPECT_FALSE(Board("D2").values.autoStart);
}

TEST_F(BoardChange, KeepsThePluginTheStateAndTheIdentity) {
    Board("D2").state = BOARD_STATE_BEING_TESTED;
    const unsigned long identity = Board("D2").identity;
    Change({{"Product", "Another"}});
    EXPECT_EQ(Board("D2").plugin, plugin);
    EXPECT_EQ(Board("D2").state, BOARD_STATE_BEING_TESTED);
    EXPECT_EQ(Board("D2").identity, identity);
    EXPECT_STREQ(Board("D2").values.product.Get(), "Another");
}

TEST_F(BoardChange, RenameKeepsTheTableSorted) {
    const struct {
        const char* newName;
        std::vector<std::string> order;
    } rows[] = {{"A", {"A", "B1", "F3"}},
                {"C", {"B1", "C", "F3"}},
                {"E", {"B1", "E", "F3"}},
                {"Z", {"B1", "F3", "Z"}},
                {"d2", {"B1", "d2", "F3"}}};
    for (const auto& row : rows) {
        Change({{"Name", row.newName}});
        EXPECT_EQ(BoardNames(), row.order);
        Pending({{"Name", "D2"}});
        ASSERT_EQ(BoardIDsValidateChanges(row.newName, handle), OAM_SUCCESS);
        BoardIDsHandleChanges(row.newName);
        EXPECT_THAT(BoardNames(), ElementsAre("B1", "D2", "F3"));
    }
}

TEST_F(BoardChange, NameOfAnotherBoardIsRefusedInAnyCase) {
    ExpectRefused({{"Name", "B1"}}, OAMERR_ALREADY_EXISTS);
    ExpectRefused({{"Name", "f3"}}, OAMERR_ALREADY_EXISTS);
}

TEST_F(BoardChange, NumberOfAnotherBoardIsRefused) {
    ExpectRefused({{"Number", "3"}}, OAMERR_ALREADY_EXISTS);
    Change({{"Number", "2"}});
}

TEST_F(BoardChange, EqualLocationsAndAddressesAreAccepted) {
    Board("B1").values.pciBus = 1;
    Board("B1").values.pciSlot = 1;
    Board("B1").values.pciIOAddress = 1;
    Change({{"Location.PCI.Bus", "1"}, {"Location.PCI.Slot", "1"}, {"Location.PCI.IOAddress", "1"}});
    EXPECT_EQ(Board("D2").values.pciSlot, 1u);
}

TEST_F(BoardChange, NameThatCannotBeReadIsRefused) {
    ExpectRefused({{"Name", std::string(128, 'n')}}, OAMERR_NOT_ENOUGH_MEMORY);
    doors.Answer("_oamDbGetKeyword", oam_result(9));
    ExpectRefused({}, oam_result(9));
}

TEST_F(BoardChange, NumberThatCannotBeReadIsRefused) {
    ConfigDoor::The().AddObject("D2", {});
    handle = ConfigDoor::The().Open("D2");
    EXPECT_EQ(Validate(), OAMERR_NOT_FOUND);
    EXPECT_EQ(TableMutex::Depth(), 0);
}

TEST_F(BoardChange, RefusedRenameLeavesNothingForTheNext) {
    ExpectRefused({{"Name", "New"}, {"Number", "3"}}, OAMERR_ALREADY_EXISTS);
    Change({{"Location.PCI.Bus", "7"}});
    EXPECT_THAT(BoardNames(), ElementsAre("B1", "D2", "F3"));
    EXPECT_EQ(Board("D2").values.pciBus, 7u);
}

TEST_F(BoardChange, WithoutMemoryIsRefusedAndHandlingNeedsNone) {
    Pending({{"Name", "New"}, {"Driver.Name", "AG"}});
    EXPECT_EQ(FailEachAllocation([&] { return Validate(); },
                                 [&](oam_result result) {
                                     EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_EQ(TableMutex::Depth(), 0);
                                     EXPECT_THAT(BoardNames(), ElementsAre("B1", "D2", "F3"));
                                 }),
              OAM_SUCCESS);
    const AllocationFuse fuse(1);
    BoardIDsHandleChanges("D2");
    EXPECT_FALSE(fuse.HasBlown());
    EXPECT_THAT(BoardNames(), ElementsAre("B1", "F3", "New"));
    EXPECT_STREQ(Board("New").values.driverName.Get(), "AG");
}

// ---- Single database writes

TEST_F(BoardChange, WriteOfATakenNumberIsRefused) {
    EXPECT_EQ(BoardIDsValidateSet("D2", "NUMBER", "3"), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(BoardIDsValidateSet("d2", "Number", "3"), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(BoardIDsValidateSet("D2", "Number", "2"), OAM_SUCCESS) << "its own";
    EXPECT_EQ(BoardIDsValidateSet("D2", "Number", "9"), OAM_SUCCESS) << "a free one";
    EXPECT_EQ(BoardIDsValidateSet("D2", "Number", nullptr), OAM_SUCCESS);
    EXPECT_EQ(BoardIDsValidateSet("D2", "Numbers", "3"), OAM_SUCCESS) << "another keyword";
    EXPECT_EQ(BoardIDsValidateSet("Supervisor", "Number", "3"), OAM_SUCCESS) << "no board";
    EXPECT_EQ(TableMutex::Depth(), 0);
}

}  // namespace
}  // namespace oam::test
