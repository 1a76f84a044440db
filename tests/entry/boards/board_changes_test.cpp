// Changing a board's keywords: what is checked when the change is committed, and what the table,
// the clients and the data file then hold.
#include "board_change.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using BoardChanges = BoardChangeTest;

TEST_F(BoardChanges, ReachTheTable) {
    const unsigned long handle = DbOpen("Delta", kProvider);
    const Entries values = {{"Number", "44"},
                            {"Driver.Name", "drv"},
                            {"Driver.BoardId", "id"},
                            {"Location.PCI.Bus", "1"},
                            {"Location.PCI.Slot", "2"},
                            {"Location.PCI.IOAddress", "3"},
                            {"Eeprom.SerialNum", "sn"},
                            {"Clocking.HBus.ClockMode", "master"},
                            {"AutoStart", "YES"},
                            {"AutoStop", "yes"},
                            {"Location.CPCI.Shelf", "5"},
                            {"Location.CPCI.Slot", "6"},
                            {"NetworkInterface.Ethernet.Count", "2"},
                            {"NetworkInterface.Ethernet[0].MAC_Address", "m0"},
                            {"NetworkInterface.Ethernet[1].MAC_Address", "m1"}};
    for (const auto& [keyword, value] : values) {
        EXPECT_EQ(_oamDbSetKeyword(handle, keyword.c_str(), value.c_str()), OAM_SUCCESS);
    }
    EXPECT_EQ(NumberOf("Delta"), Are(1));
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(Change("Supervisor", "AutoStartEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(NumberOf("Delta"), Are(44));
    EXPECT_EQ(DriverIDsOf("Delta"), Is("drv|id"));
    EXPECT_EQ(BusSlotOf("Delta"), Are(1, 2));
    EXPECT_EQ(IOAddressOf("Delta"), Are(3));
    EXPECT_EQ(SerialNumberOf("Delta"), Is("sn"));
    EXPECT_EQ(AutoStartOf("Delta"), Are(1));
    EXPECT_EQ(AutoStopOf("Delta"), Are(1));
    EXPECT_EQ(ShelfSlotOf("Delta"), Are(5, 6));
    EXPECT_EQ(MACAddressOf("Delta", 0), Is("m0"));
    EXPECT_EQ(MACAddressOf("Delta", 1), Is("m1"));
    EXPECT_EQ(MACAddressOf("Delta", 2), Is(""));
}

TEST_F(BoardChanges, OfAMissingKeywordTakeItsDefault) {
    const unsigned long handle = DbOpen("Delta", kProvider);
    for (const char* keyword : {"Driver.Name", "Location.PCI.Bus", "Location.CPCI.Slot",
                                "Eeprom.SerialNum", "NetworkInterface.Ethernet.Count"}) {
        EXPECT_EQ(_oamDbSetKeyword(handle, keyword, "1"), OAM_SUCCESS);
    }
    EXPECT_EQ(_oamDbSetKeyword(handle, "NetworkInterface.Ethernet[0].MAC_Address", "m0"),
              OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(BusSlotOf("Delta"), Are(1, 0));
    const unsigned long again = DbOpen("Delta", kProvider);
    for (const char* keyword : {"Driver.Name", "Location.PCI.Bus", "Location.CPCI.Slot",
                                "Eeprom.SerialNum", "NetworkInterface.Ethernet.Count", "Product"}) {
        EXPECT_EQ(_oamDbRemoveKeyword(again, keyword), OAM_SUCCESS);
    }
    EXPECT_EQ(_oamDbCloseObject(again), OAM_SUCCESS);
    EXPECT_EQ(DriverIDsOf("Delta"), Is("|"));
    EXPECT_EQ(BusSlotOf("Delta"), Are(0, 0));
    EXPECT_EQ(ShelfSlotOf("Delta"), Are(32, 32));
    EXPECT_EQ(SerialNumberOf("Delta"), Is(""));
    EXPECT_EQ(ProductOf("Delta"), Is(""));
    EXPECT_EQ(MACAddressOf("Delta", 0), Is(""));
}

TEST_F(BoardChanges, KeepAtMostFourMACAddresses) {
    const unsigned long handle = DbOpen("Delta", kProvider);
    EXPECT_EQ(_oamDbSetKeyword(handle, "NetworkInterface.Ethernet.Count", "4000000000"),
              OAM_SUCCESS);
    for (int i = 0; i < 6; ++i) {
        const std::string keyword =
            "NetworkInterface.Ethernet[" + std::to_string(i) + "].MAC_Address";
        const std::string value = "m" + std::to_string(i);
        EXPECT_EQ(_oamDbSetKeyword(handle, keyword.c_str(), value.c_str()), OAM_SUCCESS);
    }
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(MACAddressOf("Delta", 3), Is("m3"));
    EXPECT_EQ(MACAddressOf("Delta", 4), Is(""));
    EXPECT_EQ(ByMACAddress("m4"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(BoardChanges, TravelThroughThePluginIntoTheDataFile) {
    EXPECT_EQ(Change("Delta", "Number", "8"), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi OpenObject(1)", "rec.bpi SetKeyword(Number, 8)",
                                     "rec.bpi CloseObject()"));
    EXPECT_EQ(home.ReadDataFile("Obj1.xmo"),
              DataFile("Delta", {{"Name", "Delta"},
                                 {"Name?Description", "name of managed object"},
                                 {"Name?Type", "Object"},
                                 {"Number", "8"},
                                 {"Product", "Card"},
                                 {"Product?Type", "String"}}));
    EXPECT_EQ(NumberOf("Delta"), Are(8));
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_MODIFIED, 0, "Delta", ""}));
}

TEST_F(BoardChanges, ToANumberTakenMeanwhileAreRefusedAtTheClosing) {
    const unsigned long handle = Open("Delta", kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "Number", "9"), OAM_SUCCESS);
    EXPECT_EQ(Change("Bravo", "Number", "9"), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(handle), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(NumberOf("Delta"), Are(1));
    EXPECT_EQ(ByNumber(9), Is("Bravo"));
    ExpectTableFree();
}

TEST_F(BoardChanges, ToAnotherBoardsNumberAreRefusedAtOnce) {
    const unsigned long handle = DbOpen("Delta", kProvider);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Number", "0"), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "nUMBER", "2"), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Number", "0 or so"), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Number", "1"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Number", "01"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Number", "3"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Other.Number", "0"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(NumberOf("Delta"), Are(3));
}

TEST_F(BoardChanges, OfANumberAreFreeForObjectsThatAreNoBoards) {
    EXPECT_EQ(DbChange("Supervisor", "Number", "0"), OAM_SUCCESS);
    EXPECT_EQ(DbChange(kPlugin, "Number", "0"), OAM_SUCCESS);
}

TEST_F(BoardChanges, MaySwapNumbersInTwoSteps) {
    EXPECT_EQ(Change("Bravo", "Number", "10"), OAM_SUCCESS);
    EXPECT_EQ(Change("Delta", "Number", "0"), OAM_SUCCESS);
    EXPECT_EQ(Change("Bravo", "Number", "1"), OAM_SUCCESS);
    EXPECT_EQ(NumberOf("Bravo"), Are(1));
    EXPECT_EQ(NumberOf("Delta"), Are(0));
}

TEST_F(BoardChanges, MayGiveTwoBoardsOnePlace) {
    for (const char* board : {"Bravo", "Delta"}) {
        const unsigned long handle = DbOpen(board, kProvider);
        for (const char* keyword :
             {"Location.PCI.Bus", "Location.PCI.Slot", "Location.PCI.IOAddress",
              "Location.CPCI.Shelf", "Location.CPCI.Slot", "NetworkInterface.Ethernet.Count",
              "NetworkInterface.Ethernet[0].MAC_Address"}) {
            EXPECT_EQ(_oamDbSetKeyword(handle, keyword, "1"), OAM_SUCCESS);
        }
        EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    }
    EXPECT_EQ(BusSlotOf("Bravo"), BusSlotOf("Delta"));
    EXPECT_EQ(ShelfSlotOf("Bravo"), ShelfSlotOf("Delta"));
    EXPECT_EQ(ByMACAddress("1"), Is("Bravo"));
}

TEST_F(BoardChanges, NeedANumber) {
    const unsigned long handle = DbOpen("Delta", kProvider);
    EXPECT_EQ(_oamDbRemoveKeyword(handle, "Number"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAMERR_NOT_FOUND);
    EXPECT_EQ(NumberOf("Delta"), Are(1));
    EXPECT_EQ(StoredKeywordOf("Delta", "Number"), Is("1"));
    ExpectTableFree();
}

TEST_F(BoardChanges, NeedANumberThatCanBeRead) {
    const unsigned long handle = DbOpen("Delta", kProvider);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Number", ("1" + std::string(127, ' ')).c_str()),
              OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(NumberOf("Delta"), Are(1));
    ExpectTableFree();
}

TEST_F(BoardChanges, KeptPluginOfABoardThatChangesItsProduct) {
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    AddPluginFor("other.bpi", {"Other"});
    StartQuietly();
    EXPECT_EQ(Change("Delta", "Product", "Other"), OAM_SUCCESS);
    EXPECT_EQ(ProductOf("Delta"), Is("Other"));
    recorder.Clear();
    EXPECT_EQ(_oamStartBoard("Delta", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi StartBoard(Delta)"));
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    recorder.Clear();
    EXPECT_EQ(_oamStartBoard("Delta", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("other.bpi StartBoard(Delta)"));
}

TEST_F(BoardChanges, OfAReadingLeaveEverythingAlone) {
    const std::string file = home.ReadDataFile("Obj1.xmo");
    EXPECT_EQ(_oamBoardSetShelfSlot("Delta", 7, 8), OAM_SUCCESS);
    const unsigned long handle = Open("Delta", kRead);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(ShelfSlotOf("Delta"), Are(7, 8));
    EXPECT_EQ(home.ReadDataFile("Obj1.xmo"), file);
    EXPECT_THAT(alerts.Heard(), IsEmpty());
}

TEST_F(BoardChanges, OfOtherObjectsLeaveTheTableFree) {
    EXPECT_EQ(Change("Supervisor", "AutoStartEnabled", "Yes"), OAM_SUCCESS);
    ExpectTableFree();
    EXPECT_EQ(DbChange(kPlugin, "Remark", "text"), OAM_SUCCESS);
    ExpectTableFree();
}

TEST_F(BoardChanges, ThatCannotBeSavedAreNotApplied) {
    home.Remove("oam/cfg/Obj1.xmo");
    const unsigned long handle = DbOpen("Delta", kProvider);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Name", "Delta"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Number", "9"), OAM_SUCCESS);
    home.MakeDirectory("oam/cfg/Obj1.xmo");
    EXPECT_EQ(_oamDbCloseObject(handle), OAMERR_FILE_WRITE_ERROR);
    EXPECT_EQ(NumberOf("Delta"), Are(1));
    ExpectTableFree();
}

}  // namespace

}  // namespace oam::test
