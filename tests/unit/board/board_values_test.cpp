// What a board's record keeps of its keywords.
#include "board/board_values.h"

#include "board_room.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;

using MacTexts = char[6][OAM_MAC_TEXT_SIZE];

class MacAddresses : public ::testing::Test {
  protected:
    MacAddresses() {
        for (size_t i = 0; i < 6; ++i) texts[i][0] = static_cast<char>('a' + i);
    }
    BoardValues values;
    MacTexts texts{};
};

TEST_F(MacAddresses, SixAreCutToFour) {
    values.SetMACAddress(texts, 6);
    EXPECT_EQ(values.macAddressCount, 4u);
    EXPECT_STREQ(values.MacAddressAt(0), "a");
    EXPECT_STREQ(values.MacAddressAt(3), "d");
    EXPECT_STREQ(values.MacAddressAt(4), "");
}

TEST_F(MacAddresses, AtOrAboveTheCountIsEmpty) {
    values.SetMACAddress(texts, 2);
    EXPECT_STREQ(values.MacAddressAt(1), "b");
    EXPECT_STREQ(values.MacAddressAt(2), "");
    EXPECT_STREQ(values.MacAddressAt(7), "");
    EXPECT_STREQ(values.MacAddressAt(0xFFFFFFFF), "");
}

TEST_F(MacAddresses, NoneEmptiesTheFirst) {
    values.SetMACAddress(texts, 4);
    values.SetMACAddress(nullptr, 0);
    EXPECT_EQ(values.macAddressCount, 0u);
    EXPECT_STREQ(values.MacAddressAt(0), "");
    EXPECT_STREQ(values.MacAddressAt(3), "") << "every index gives the first";
}

TEST_F(MacAddresses, Of128CharactersIsKeptWhole) {
    memset(texts[0], 'x', OAM_MAC_TEXT_SIZE - 1);
    values.SetMACAddress(texts, 1);
    EXPECT_EQ(values.MacAddressAt(0), std::string(128, 'x'));
}

TEST_F(MacAddresses, WithoutATerminatorIsCut) {
    memset(texts[0], 'x', OAM_MAC_TEXT_SIZE);
    values.SetMACAddress(texts, 1);
    EXPECT_EQ(values.MacAddressAt(0), std::string(128, 'x'));
}

class StoredValues : public BoardRoom {
  protected:
    BoardValues Read(const ConfigDoor::Entries& entries) {
        ConfigDoor::The().AddObject("B", entries);
        BoardValues values;
        EXPECT_EQ(readBoardValues(ConfigDoor::The().Open("B"), &values), OAM_SUCCESS);
        return values;
    }
};

TEST_F(StoredValues, MissingOnesHaveTheirDefaults) {
    const BoardValues values = Read({});
    EXPECT_STREQ(values.driverName.Get(), "");
    EXPECT_STREQ(values.driverBoardId.Get(), "");
    EXPECT_STREQ(values.serialNumber.Get(), "");
    EXPECT_STREQ(values.product.Get(), "");
    EXPECT_STREQ(values.clockMode.Get(), "");
    EXPECT_EQ(values.pciBus, 0u);
    EXPECT_EQ(values.pciSlot, 0u);
    EXPECT_EQ(values.pciIOAddress, 0u);
    EXPECT_EQ(values.cpciShelf, 32u);
    EXPECT_EQ(values.cpciSlot, 32u);
    EXPECT_FALSE(values.autoStart);
    EXPECT_FALSE(values.autoStop);
    EXPECT_FALSE(values.xLaw);
    EXPECT_EQ(values.macAddressCount, 0u);
}

TEST_F(StoredValues, EachComesFromItsKeyword) {
    const BoardValues values = Read({{"Driver.Name", "AG"},
                                     {"Driver.BoardId", "7"},
                                     {"Location.PCI.Bus", "1"},
                                     {"Location.PCI.Slot", "2"},
                                     {"Location.PCI.IOAddress", "3"},
                                     {"Eeprom.SerialNum", "S"},
                                     {"Product", "P"},
                                     {"Clocking.HBus.ClockMode", "C"},
                                     {"AutoStart", "Yes"},
                                     {"AutoStop", "Yes"},
                                     {"XLaw", "A-LAW"},
                                     {"Location.CPCI.Shelf", "4"},
                                     {"Location.CPCI.Slot", "5"}});
    EXPECT_STREQ(values.driverName.Get(), "AG");
    EXPECT_STREQ(values.driverBoardId.Get(), "7");
    EXPECT_EQ(values.pciBus, 1u);
    EXPECT_EQ(values.pciSlot, 2u);
    EXPECT_EQ(values.pciIOAddress, 3u);
    EXPECT_STREQ(values.serialNumber.Get(), "S");
    EXPECT_STREQ(values.product.Get(), "P");
    EXPECT_STREQ(values.clockMode.Get(), "C");
    EXPECT_TRUE(values.autoStart);
    EXPECT_TRUE(values.autoStop);
    EXPECT_TRUE(values.xLaw);
    EXPECT_EQ(values.cpciShelf, 4u);
    EXPECT_EQ(values.cpciSlot, 5u);
}

TEST_F(StoredValues, KeptLawIsComparedExactlyAndTheMarksAreNot) {
    for (const char* yes : {"Yes", "YES", "yes"}) {
        EXPECT_TRUE(Read({{"AutoStart", yes}}).autoStart);
        EXPECT_TRUE(Read({{"AutoStop", yes}}).autoStop);
    }
    for (const char* no : {"", "Y", "Yes ", "true", "1"}) {
        EXPECT_FALSE(Read({{"AutoStart", no}}).autoStart) << no;
    }
    for (const char* aLaw : {"A-LAW", "ALAW"}) EXPECT_TRUE(Read({{"XLaw", aLaw}}).xLaw);
    for (const char* other : {"a-law", "A-law", "alaw", "MU-LAW", "", "A-LAW "}) {
        EXPECT_FALSE(Read({{"XLaw", other}}).xLaw) << other;
    }
}

TEST_F(StoredValues, NumbersAreDecimalAndTextsAreZero) {
    EXPECT_EQ(boardNumberFromText("4294967295"), 4294967295u);
    EXPECT_EQ(boardNumberFromText(" 12abc"), 12u);
    EXPECT_EQ(boardNumberFromText("0x10"), 0u);
    EXPECT_EQ(boardNumberFromText("010"), 10u);
    EXPECT_EQ(boardNumberFromText("abc"), 0u);
    EXPECT_EQ(boardNumberFromText(""), 0u);
    EXPECT_EQ(Read({{"Location.CPCI.Shelf", ""}}).cpciShelf, 0u) << "there, but no number";
}

TEST_F(StoredValues, LongValueCountsAsMissing) {
    const BoardValues values = Read({{"Driver.Name", std::string(128, 'd')},
                                     {"Location.CPCI.Slot", std::string(128, '1')},
                                     {"Driver.BoardId", std::string(127, 'i')}});
    EXPECT_STREQ(values.driverName.Get(), "");
    EXPECT_EQ(values.cpciSlot, 32u);
    EXPECT_EQ(values.driverBoardId.Get(), std::string(127, 'i'));
}

TEST_F(StoredValues, MacAddressesAreReadByTheirCountUpToTheirSlots) {
    ConfigDoor::Entries entries = {{"NetworkInterface.Ethernet.Count", "4000000000"}};
    for (int i = 0; i < 8; ++i) {
        entries["NetworkInterface.Ethernet[" + std::to_string(i) + "].MAC_Address"] =
            "mac" + std::to_string(i);
    }
    const BoardValues values = Read(entries);
    EXPECT_EQ(values.macAddressCount, 4u);
    EXPECT_STREQ(values.MacAddressAt(3), "mac3");
    EXPECT_STREQ(values.MacAddressAt(4), "");
    for (const std::string& call : doors.CallsOf({"_oamDbGetKeyword"})) {
        EXPECT_EQ(call.find("Ethernet[5]"), std::string::npos);
    }
}

TEST_F(StoredValues, MissingOrLongMacAddressIsEmpty) {
    const BoardValues values =
        Read({{"NetworkInterface.Ethernet.Count", "3"},
              {"NetworkInterface.Ethernet[0].MAC_Address", std::string(129, 'm')},
              {"NetworkInterface.Ethernet[2].MAC_Address", std::string(128, 'm')}});
    EXPECT_EQ(values.macAddressCount, 3u);
    EXPECT_STREQ(values.MacAddressAt(0), "");
    EXPECT_STREQ(values.MacAddressAt(1), "");
    EXPECT_EQ(values.MacAddressAt(2), std::string(128, 'm'));
}

TEST_F(StoredValues, NumberIsReadApart) {
    unsigned number = 42;
    ConfigDoor::The().AddObject("B");
    EXPECT_EQ(readBoardNumber(ConfigDoor::The().Open("B"), &number), OAMERR_NOT_FOUND);
    EXPECT_EQ(number, 42u);
    ConfigDoor::The().AddObject("B", {{"Number", "7"}});
    EXPECT_EQ(readBoardNumber(ConfigDoor::The().Open("B"), &number), OAM_SUCCESS);
    EXPECT_EQ(number, 7u);
}

TEST_F(StoredValues, WithoutMemoryAreAFailure) {
    ConfigDoor::The().AddObject("B", {{"Driver.Name", "AG"}});
    const unsigned long handle = ConfigDoor::The().Open("B");
    EXPECT_EQ(FailEachAllocation(
                  [&] {
                      BoardValues values;
                      return readBoardValues(handle, &values);
                  },
                  [](oam_result result) { EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY); }),
              OAM_SUCCESS);
}

}  // namespace
}  // namespace oam::test
