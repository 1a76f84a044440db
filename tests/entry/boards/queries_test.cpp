// What the single board queries answer and change.
#include <atomic>
#include <cstring>

#include "boards.h"
#include "elsewhere.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;

std::string macKeyword(int index) {
    return "NetworkInterface.Ethernet[" + std::to_string(index) + "].MAC_Address";
}

class Queries : public BoardTest {
  protected:
    std::vector<std::string> MacAddresses(const std::string& board) {
        std::vector<std::string> texts;
        for (unsigned index : {0u, 1u, 2u, 3u, 4u, 7u, 0xFFFFFFFFu}) {
            const Answer text = MACAddressOf(board, index);
            EXPECT_EQ(text.code, OAM_SUCCESS) << index;
            texts.push_back(text.text);
        }
        return texts;
    }
};

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
    const Entries same = {{"Driver.Name", "d"},
                          {"Driver.BoardId", "i"},
                          {"Location.PCI.Bus", "1"},
                          {"Location.PCI.Slot", "2"},
                          {"Location.PCI.IOAddress", "3"},
                          {"Location.CPCI.Shelf", "4"},
                          {"Location.CPCI.Slot", "5"},
                          {"Eeprom.SerialNum", "s"},
                          {"NetworkInterface.Ethernet.Count", "1"},
                          {macKeyword(0), "m"}};
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
    Configure("A", {{"NetworkInterface.Ethernet.Count", "1"}, {macKeyword(0), "a0"}});
    Configure("B", {{"NetworkInterface.Ethernet.Count", "4"},
                    {macKeyword(0), "b0"},
                    {macKeyword(1), "b1"},
                    {macKeyword(2), "a0"},
                    {macKeyword(3), "b3"}});
    Configure("C");
    Start();
    EXPECT_EQ(ByMACAddress("A0"), Is("A"));
    EXPECT_EQ(ByMACAddress("B3"), Is("B"));
    EXPECT_EQ(ByMACAddress(""), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Queries, FindAnEmptyMACAddressOnlyWhereItIsCounted) {
    Configure("A");
    Configure("B", {{"NetworkInterface.Ethernet.Count", "2"}, {macKeyword(0), "b0"}});
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
    Configure("Two", {{"NetworkInterface.Ethernet.Count", "2"},
                      {macKeyword(0), "m0"},
                      {macKeyword(1), "m1"}});
    Start();
    EXPECT_THAT(MacAddresses("None"), ElementsAre("", "", "", "", "", "", ""));
    EXPECT_THAT(MacAddresses("Two"), ElementsAre("m0", "m1", "", "", "", "", ""));
}

TEST_F(Queries, SetAtMostFourMACAddresses) {
    Configure("A");
    Start();
    EXPECT_EQ(SetMACAddresses("a", {"0", "1", "2", "3", "4", "5"}), OAM_SUCCESS);
    EXPECT_THAT(MacAddresses("A"), ElementsAre("0", "1", "2", "3", "", "", ""));
    EXPECT_EQ(ByMACAddress("3"), Is("A"));
    EXPECT_EQ(ByMACAddress("4"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(SetMACAddresses("a", {"x"}), OAM_SUCCESS);
    EXPECT_THAT(MacAddresses("A"), ElementsAre("x", "", "", "", "", "", ""));
    EXPECT_EQ(ByMACAddress("1"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Queries, SetMACAddressesOf128Characters) {
    Configure("A");
    Start();
    const std::string longest(128, 'm');
    EXPECT_EQ(SetMACAddresses("A", {longest, "second"}), OAM_SUCCESS);
    EXPECT_EQ(MACAddressOf("A", 0), Is(longest));
    EXPECT_EQ(MACAddressOf("A", 1), Is("second"));
    EXPECT_EQ(ByMACAddress(longest), Is("A"));
}

TEST_F(Queries, SetNoMACAddressesByACountOfZero) {
    Configure("A");
    Start();
    EXPECT_EQ(SetMACAddresses("A", {"0", "1"}), OAM_SUCCESS);
    EXPECT_EQ(_oamBoardSetMACAddress("A", nullptr, 0), OAM_SUCCESS);
    EXPECT_THAT(MacAddresses("A"), ElementsAre("", "", "", "", "", "", ""));
    EXPECT_EQ(ByMACAddress("0"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Queries, ResetTheMACAddressCount) {
    Configure("A");
    Start();
    EXPECT_EQ(SetMACAddresses("A", {"0", "1"}), OAM_SUCCESS);
    EXPECT_EQ(_oamBoardResetMACAddressCount("a"), OAM_SUCCESS);
    EXPECT_THAT(MacAddresses("A"), ElementsAre("", "", "", "", "", "", ""));
    EXPECT_EQ(ByMACAddress("0"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(ByMACAddress("1"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Queries, SetShelfAndSlotInThisOrder) {
    Configure("A");
    Start();
    EXPECT_EQ(_oamBoardSetShelfSlot("a", 5, 6), OAM_SUCCESS);
    EXPECT_EQ(ShelfSlotOf("A"), Are(5, 6));
    EXPECT_EQ(ByShelfSlot(5, 6), Is("A"));
    EXPECT_EQ(ByShelfSlot(6, 5), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(ByShelfSlot(32, 32), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Queries, KeptSettersChangeTheTableOnly) {
    Configure("A", {{"Location.CPCI.Shelf", "1"},
                    {"Location.CPCI.Slot", "2"},
                    {"NetworkInterface.Ethernet.Count", "1"},
                    {macKeyword(0), "m0"}});
    Start();
    const std::string file = home.ReadDataFile("Obj0.xmo");
    const std::string segment = home.Read("shm/OAM_BoardIDsShadow");
    alerts.Clear();
    recorder.Clear();
    EXPECT_EQ(_oamBoardSetShelfSlot("A", 7, 8), OAM_SUCCESS);
    EXPECT_EQ(SetMACAddresses("A", {"n0", "n1"}), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), file);
    EXPECT_EQ(home.Read("shm/OAM_BoardIDsShadow"), segment);
    EXPECT_EQ(StoredKeywordOf("A", "Location.CPCI.Shelf"), Is("1"));
    EXPECT_THAT(alerts.Heard(), testing::IsEmpty());
    EXPECT_THAT(recorder.Lines(), testing::IsEmpty());
}

TEST_F(Queries, KeptSettersLastUntilTheNextCommittedChange) {
    Configure("A", {{"Location.CPCI.Shelf", "1"},
                    {"Location.CPCI.Slot", "2"},
                    {"Location.PCI.Bus", "0"},
                    {"NetworkInterface.Ethernet.Count", "1"},
                    {macKeyword(0), "m0"}});
    Start();
    EXPECT_EQ(_oamBoardSetShelfSlot("A", 7, 8), OAM_SUCCESS);
    EXPECT_EQ(SetMACAddresses("A", {"n0", "n1"}), OAM_SUCCESS);
    EXPECT_EQ(Change("A", "Location.PCI.Bus", "9"), OAM_SUCCESS);
    EXPECT_EQ(ShelfSlotOf("A"), Are(1, 2));
    EXPECT_THAT(MacAddresses("A"), ElementsAre("m0", "", "", "", "", "", ""));
}

TEST_F(Queries, KeptSettersLastUntilARestart) {
    Configure("A", {{"Location.CPCI.Shelf", "1"}, {"Location.CPCI.Slot", "2"}});
    Start();
    EXPECT_EQ(_oamBoardSetShelfSlot("A", 7, 8), OAM_SUCCESS);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(ShelfSlotOf("A"), Are(1, 2));
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

TEST_F(Queries, PassABufferOnToTheBoardsPlugin) {
    AddPluginFor("other.bpi", {"Other"});
    Configure("A");
    Configure("B", {{"Product", "Other"}});
    Start();
    recorder.Script("other.bpi", [](ModuleScript& script) {
        script.sendBuffer = [](const char*, const void*, unsigned) { return 0xA1u; };
    });
    recorder.Clear();
    const std::string bytes("x\0y", 3);
    EXPECT_EQ(_oamSendBuffer("A", bytes.data(), 3), OAM_SUCCESS);
    EXPECT_EQ(_oamSendBuffer("B", bytes.data(), 2), 0xA1u);
    const auto calls = recorder.Calls("SendBuffer");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].file, "rec.bpi");
    EXPECT_THAT(calls[0].arguments, ElementsAre("A", bytes));
    EXPECT_EQ(calls[0].thread, std::this_thread::get_id());
    EXPECT_EQ(calls[1].file, "other.bpi");
    EXPECT_THAT(calls[1].arguments, ElementsAre("B", bytes.substr(0, 2)));
}

TEST_F(Queries, PassTheCallersOwnBufferOn) {
    Configure("A");
    Start();
    const char bytes[] = "abc";
    const void* passed = nullptr;
    Script([&passed](ModuleScript& script) {
        script.sendBuffer = [&passed](const char*, const void* buffer, unsigned) {
            passed = buffer;
            return 0u;
        };
    });
    EXPECT_EQ(_oamSendBuffer("A", bytes, 3), OAM_SUCCESS);
    EXPECT_EQ(passed, bytes);
}

TEST_F(Queries, AskTheBoardsPluginForItsStatus) {
    Configure("A");
    Start();
    Script([](ModuleScript& script) {
        script.getBoardStatus = [](const char*, unsigned selector, int* status) {
            *status = -static_cast<int>(selector);
            return selector == 9 ? 0xA2u : 0u;
        };
    });
    recorder.Clear();
    int status = 0;
    EXPECT_EQ(_oamBoardGetStatus("A", 4, &status), OAM_SUCCESS);
    EXPECT_EQ(status, -4);
    EXPECT_EQ(_oamBoardGetStatus("A", 9, &status), 0xA2u);
    EXPECT_EQ(status, -9);
    EXPECT_THAT(recorder.Lines(),
                ElementsAre("rec.bpi GetBoardStatus(A, 4)", "rec.bpi GetBoardStatus(A, 9)"));
}

TEST_F(Queries, ForwardWithoutALock) {
    Configure("A");
    Configure("B", {{"Location.PCI.Bus", "0"}});
    Start();
    Latch latch;
    Script([&latch](ModuleScript& script) {
        script.sendBuffer = [&latch](const char*, const void*, unsigned) {
            latch.Wait();
            return 0u;
        };
        script.getBoardStatus = [&latch](const char*, unsigned, int*) {
            latch.Wait();
            return 0u;
        };
    });
    Elsewhere<oam_result> sending([] { return _oamSendBuffer("A", "abc", 3); });
    Elsewhere<oam_result> asking([] {
        int status = 0;
        return _oamBoardGetStatus("A", 1, &status);
    });
    ASSERT_TRUE(latch.WaitForArrival(2));
    EXPECT_EQ(NumberOf("B"), Are(1));
    EXPECT_EQ(Change("B", "Location.PCI.Bus", "5"), OAM_SUCCESS);
    latch.Open();
    ASSERT_TRUE(sending.IsDone());
    ASSERT_TRUE(asking.IsDone());
    EXPECT_EQ(sending.Get(), OAM_SUCCESS);
    EXPECT_EQ(asking.Get(), OAM_SUCCESS);
}

TEST_F(Queries, FailWhereThePluginThrows) {
    Configure("A");
    Start();
    Script([](ModuleScript& script) {
        script.sendBuffer = [](const char*, const void*, unsigned) -> unsigned { throw 1; };
        script.getBoardStatus = [](const char*, unsigned, int*) -> unsigned { throw 2; };
    });
    int status = 0;
    EXPECT_EQ(_oamSendBuffer("A", "abc", 3), OAM_REASON_FAILED);
    EXPECT_EQ(_oamBoardGetStatus("A", 1, &status), OAM_REASON_FAILED);
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
