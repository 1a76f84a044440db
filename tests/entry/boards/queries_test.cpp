// What the single board queries answer and change.
#include <atomic>
#include <cstring>

#include "boards.h"
#include "elsewhere.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;

using Queries = BoardTest;

TEST_F(Queries, EnumerateByPositionInNameOrder) {
    for (const char* board : {"delta", "Bravo", "alpha", "CHARLIE"}) Configure(board);
    Start();
    const auto at = [](int index) {
        return TextFrom(
            [=](char* buffer, unsigned size) { return _oamBoardEnum(index, buffer, size); });
    };
    EXPECT_EQ(at(-1), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(at(0), Is("alpha"));
    EXPECT_EQ(at(1), Is("Bravo"));
    EXPECT_EQ(at(2), Is("CHARLIE"));
    EXPECT_EQ(at(3), Is("delta"));
    EXPECT_EQ(at(4), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(at(2147483647), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(at(-2147483647 - 1), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Queries, FindTheFirstOfSeveralBoardsInNameOrder) {
    const Entries same = {
        {"Driver.Name", "d"},        {"Driver.BoardId", "i"},         {"Location.PCI.Bus", "1"},
        {"Location.PCI.Slot", "2"},  {"Location.PCI.IOAddress", "3"}, {"Location.CPCI.Shelf", "4"},
        {"Location.CPCI.Slot", "5"}, {"Eeprom.SerialNum", "s"},       {kMacCount, "1"},
        {MacKeyword(0), "m"}};
    for (const char* board : {"zulu", "Alpha", "mike"}) Configure(board, same);
    Start();
    EXPECT_EQ(ByDriverIDs("d", "i"), Is("Alpha"));
    EXPECT_EQ(ByBusSlot(1, 2), Is("Alpha"));
    EXPECT_EQ(ByIOAddress(3), Is("Alpha"));
    EXPECT_EQ(ByShelfSlot(4, 5), Is("Alpha"));
    EXPECT_EQ(BySerialNumber("s"), Is("Alpha"));
    EXPECT_EQ(ByProduct("Card"), Is("Alpha"));
    EXPECT_EQ(ByMACAddress("m"), Is("Alpha"));
}

TEST_F(Queries, NeedBothPartsOfAnIdentity) {
    Configure("A", {{"Driver.Name", "d1"},
                    {"Driver.BoardId", "i1"},
                    {"Location.PCI.Bus", "1"},
                    {"Location.PCI.Slot", "1"}});
    Configure("B", {{"Driver.Name", "d1"},
                    {"Driver.BoardId", "i2"},
                    {"Location.PCI.Bus", "1"},
                    {"Location.PCI.Slot", "2"}});
    Start();
    EXPECT_EQ(ByDriverIDs("D1", "I2"), Is("B"));
    EXPECT_EQ(ByDriverIDs("d2", "i2"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(ByBusSlot(1, 2), Is("B"));
    EXPECT_EQ(ByBusSlot(2, 2), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Queries, FindTheFirstBoardOfEachProduct) {
    AddPluginFor("other.bpi", {"Other"});
    Configure("A", {{"Product", "Other"}});
    Configure("B");
    Configure("C", {{"Product", "Other"}});
    Start();
    EXPECT_EQ(ByProduct("CARD"), Is("B"));
    EXPECT_EQ(ByProduct("other"), Is("A"));
    EXPECT_EQ(ByProduct("third"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Queries, FindABoardByAnyOfItsMACAddresses) {
    Configure("A", {{kMacCount, "1"}, {MacKeyword(0), "a0"}});
    Configure("B", {{kMacCount, "4"},
                    {MacKeyword(0), "b0"},
                    {MacKeyword(1), "b1"},
                    {MacKeyword(2), "a0"},
                    {MacKeyword(3), "b3"}});
    Configure("C");
    Start();
    EXPECT_EQ(ByMACAddress("A0"), Is("A"));
    EXPECT_EQ(ByMACAddress("B3"), Is("B"));
    EXPECT_EQ(ByMACAddress(""), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Queries, FindAnEmptyMACAddressOnlyWhereItIsCounted) {
    Configure("A");
    Configure("B", {{kMacCount, "2"}, {MacKeyword(0), "b0"}});
    Start();
    EXPECT_EQ(ByMACAddress(""), Is("B"));
}

TEST_F(Queries, CopyTheDriverNameFirst) {
    Configure("A", {{"Driver.Name", "driver"}, {"Driver.BoardId", "identifier"}});
    Start();
    char driver[16];
    char id[16];
    const auto ask = [&](unsigned driverSize, unsigned idSize) {
        std::strcpy(driver, "-");
        std::strcpy(id, "-");
        return _oamBoardGetDriverIDs("a", driver, driverSize, id, idSize);
    };
    EXPECT_EQ(ask(7, 11), OAM_SUCCESS);
    EXPECT_STREQ(driver, "driver");
    EXPECT_STREQ(id, "identifier");
    EXPECT_EQ(ask(6, 11), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(driver, "-");
    EXPECT_STREQ(id, "-");
    EXPECT_EQ(ask(7, 10), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(driver, "driver");
    EXPECT_STREQ(id, "-");
}

TEST_F(Queries, AnswerAnEmptyMACAddressFromTheCountOn) {
    Configure("None");
    Configure("Two", {{kMacCount, "2"}, {MacKeyword(0), "m0"}, {MacKeyword(1), "m1"}});
    Start();
    EXPECT_THAT(MACAddressesOf("None"), ElementsAre("", "", "", "", "", "", ""));
    EXPECT_THAT(MACAddressesOf("Two"), ElementsAre("m0", "m1", "", "", "", "", ""));
}

TEST_F(Queries, TellAutomaticOperationOnlyWhereBothSaySo) {
    Configure("Both", {{"AutoStart", "Yes"}, {"AutoStop", "Yes"}});
    Configure("Neither", {{"AutoStart", "No"}, {"AutoStop", "No"}});
    Start();
    EXPECT_EQ(AutoStartOf("Both"), Are(0));
    EXPECT_EQ(AutoStopOf("Both"), Are(0));
    EXPECT_EQ(Change("Supervisor", "AutoStartEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(AutoStartOf("Both"), Are(1));
    EXPECT_EQ(AutoStopOf("Both"), Are(0));
    EXPECT_EQ(AutoStartOf("Neither"), Are(0));
    EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(AutoStopOf("Both"), Are(1));
    EXPECT_EQ(AutoStopOf("Neither"), Are(0));
    EXPECT_EQ(Change("Both", "AutoStart", "No"), OAM_SUCCESS);
    EXPECT_EQ(AutoStartOf("Both"), Are(0));
}

TEST_F(Queries, AnswerOfOneStateOfTheTable) {
    Configure("A", {{"Driver.Name", "x"}, {"Driver.BoardId", "x"}});
    Start();
    std::atomic<bool> over{false};
    Elsewhere<int> changes([&over] {
        for (int i = 0; i < 200; ++i) {
            const unsigned long handle = Open("A", kWrite);
            const std::string text = std::string(1 + i % 40, static_cast<char>('a' + i % 26));
            EXPECT_EQ(_oamSetKeyword(handle, "Driver.Name", text.c_str()), OAM_SUCCESS);
            EXPECT_EQ(_oamSetKeyword(handle, "Driver.BoardId", text.c_str()), OAM_SUCCESS);
            EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
        }
        over = true;
        return 0;
    });
    while (!over) {
        const Answer ids = DriverIDsOf("A");
        ASSERT_EQ(ids.code, OAM_SUCCESS);
        const size_t bar = ids.text.find('|');
        ASSERT_EQ(ids.text.substr(0, bar), ids.text.substr(bar + 1));
    }
    ASSERT_TRUE(changes.IsDone());
}

}  // namespace

}  // namespace oam::test
