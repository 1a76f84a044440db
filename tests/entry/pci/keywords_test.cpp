// The keywords of the plug-in's own object and of its boards.
#include "pci_test.h"

namespace oam::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

class PciSettings : public PciTest {
  protected:
    static std::vector<std::string> Products() {
        std::vector<std::string> products;
        const int count = std::stoi(KeywordOf("Supervisor", "Products.Count").text);
        for (int i = 0; i < count; ++i) {
            products.push_back(KeywordOf("Supervisor", "Products[" + std::to_string(i) + "]").text);
        }
        return products;
    }
};

TEST_F(PciSettings, HaveATableOfBoardsFromTheFirstStart) {
    Start();
    EXPECT_EQ(KeywordOf(kPci, "Match.Count"), Is("6"));
    EXPECT_EQ(KeywordOf(kPci, "Match[0].Vendor"), Is("d161"));
    EXPECT_EQ(KeywordOf(kPci, "Match[4].Class"), Is("0200*"));
    EXPECT_EQ(KeywordOf(kPci, "Match[4].Product"), Is("PCI-ETHERNET"));
    EXPECT_EQ(QualifierOf(kPci, "Match[4].Product", "Type"), Is("Object"));
    EXPECT_EQ(QualifierOf(kPci, "Match.Count", "Max"), Is("64"));
    EXPECT_EQ(QualifierOf(kPci, "Match[0].Class", "Description"),
              Is("six hexadecimal digits, ? for any one, * for the rest"));
    EXPECT_THAT(Products(),
                ElementsAre("PCI-ETHERNET", "PCI-ISDN", "PCI-NETWORK", "PCI-TELEPHONY"));
}

TEST_F(PciSettings, RefuseWhatIsNoGood) {
    Start();
    const std::vector<std::pair<const char*, const char*>> bad = {
        {"Match[0].Vendor", "80861"},  {"Match[0].Vendor", ""},        {"Match[0].Device", "xyz*"},
        {"Match[0].Class", "02"},      {"Match[0].Class", "0200000*"}, {"Match[0].Product", ""},
        {"Match[0].Product", "a.bpi"}, {"Match[0].Product", "a<b"},    {"Match.Count", "65"},
        {"Match.Count", "-1"},         {"Sysfs.Root", "sys"},          {"Sysfs.Root", ""},
        {"Timing.BindMs", "60001"},    {"Timing.BindMs", "soon"},
    };
    for (const auto& [keyword, value] : bad) {
        EXPECT_EQ(Change(kPci, keyword, value), OAMERR_SET_BOARD_KEYWORD_FAIL)
            << keyword << " = " << value;
    }
    EXPECT_EQ(Change(kPci, "Match[0].Product", std::string(116, 'x')),
              OAMERR_SET_BOARD_KEYWORD_FAIL);
    for (const char* keyword : {"Name", "DetectedBoards.Count", "Products[0]", "Products.Count",
                                "Match.Count?Max", "Match[64].Vendor", "Unheard"}) {
        EXPECT_EQ(Change(kPci, keyword, "1"), OAMERR_ACCESS_DENIED) << keyword;
    }
}

TEST_F(PciSettings, TakeANewRowThatFitsNothingUntilItIsFilledIn) {
    host.Add({.address = "0000:05:00.0", .vendor = 0x1234, .classCode = 0x118000});
    Start();
    const unsigned long handle = Open(kPci, kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "Match.Count", "7"), OAM_SUCCESS);
    EXPECT_EQ(GetKeyword(handle, "Match[6].Vendor"), Is("ffff"));
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    ASSERT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf(kPci, "DetectedBoards.Count"), Is("1"));

    ASSERT_EQ(Change(kPci, "Match[6].Vendor", "1234"), OAM_SUCCESS);
    ASSERT_EQ(Change(kPci, "Match[6].Product", "CUSTOM"), OAM_SUCCESS);
    ASSERT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf(kPci, "DetectedBoards.Count"), Is("2"));
    EXPECT_EQ(KeywordOf(kPci, "DetectedBoards[1].Product"), Is("CUSTOM"));
    ASSERT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(Products(), Contains("CUSTOM"));
}

TEST_F(PciSettings, LetOneProductStandInSeveralRows) {
    Start();
    ASSERT_EQ(Change(kPci, "Match[5].Product", "pci-ethernet"), OAM_SUCCESS);
    ASSERT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(Products(), ElementsAre("PCI-ETHERNET", "PCI-ISDN", "PCI-TELEPHONY"));
}

TEST_F(PciSettings, AreRepairedAndToldWhenTheyWereSpoiled) {
    WriteSettings({{"Match[2].Class", "no pattern"}, {"Timing.BindMs", "soon"}});
    Start();
    EXPECT_EQ(KeywordOf(kPci, "Match[2].Class"), Is("0402*"));
    EXPECT_EQ(KeywordOf(kPci, "Timing.BindMs"), Is("2000"));
    EXPECT_THAT(alerts.HeardFrom(kPci),
                Contains(Said{OAMEVN_ALERT, OAM_ERROR, kPci,
                              "\"Match[2].Class\" was \"no pattern\" and is now \"0402*\"."}));
}

TEST_F(PciSettings, TellWhatIsComputedInQualifiers) {
    Start();
    ASSERT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    EXPECT_EQ(QualifierOf(kPci, "", "Keywords.Count"), Is("2"));
    EXPECT_EQ(QualifierOf(kPci, "", "Keywords[0]"), Is("DetectedBoards"));
    EXPECT_EQ(QualifierOf(kPci, "DetectedBoards[0]", "Keywords[2]"),
              Is("DetectedBoards[0].Location.PCI.Bus"));
    EXPECT_EQ(QualifierOf(kPci, "DetectedBoards[0].Location.PCI.Bus", "Type"), Is("Integer"));
    EXPECT_EQ(QualifierOf(kPci, "Products", "Type"), Is("Array"));
    EXPECT_EQ(QualifierOf(kPci, "Products[0]", "ReadOnly"), Is("Yes"));
    EXPECT_EQ(KeywordOf(kPci, "Products[0]"), Is("PCI-TELEPHONY"));
    EXPECT_EQ(KeywordOf(kPci, "Products[9]"), Fails(OAMERR_NOT_FOUND));
}

class PciBoardKeywords : public PciTest {
  protected:
    void SetUp() override {
        PciTest::SetUp();
        StartWithBoards();
    }
};

TEST_F(PciBoardKeywords, HaveQualifiers) {
    EXPECT_EQ(QualifierOf(kBoard, "Location.PCI.Slot", "Max"), Is("31"));
    EXPECT_EQ(QualifierOf(kBoard, "Location.PCI.Bus", "Max"), Is("268435455"));
    EXPECT_EQ(QualifierOf(kBoard, "Eeprom.SerialNum", "ReadOnly"), Is("Yes"));
    EXPECT_EQ(QualifierOf(kBoard, "AutoStart", "Choices[1]"), Is("No"));
    EXPECT_EQ(QualifierOf(kBoard, "Driver.Name", "Description"),
              Is("kernel driver that starts the board; empty: the kernel's choice"));
}

TEST_F(PciBoardKeywords, RefuseWhatIsNoGood) {
    const std::vector<std::pair<const char*, const char*>> bad = {
        {"Location.PCI.Slot", "32"}, {"Location.PCI.Slot", "x"},    {"Location.PCI.Bus", "-1"},
        {"Driver.Name", "../x"},     {"Driver.Name", ".."},         {"AutoStart", "Perhaps"},
        {"Number", "65536"},         {"Location.CPCI.Slot", "256"}, {"Name", "x.emc"},
    };
    for (const auto& [keyword, value] : bad) {
        EXPECT_EQ(Change(kBoard, keyword, value), OAMERR_SET_BOARD_KEYWORD_FAIL)
            << keyword << " = " << value;
    }
    for (const char* keyword :
         {"Product", "Eeprom.SerialNum", "Driver.BoardId", "NetworkInterface.Ethernet.Count",
          "NetworkInterface.Ethernet[0].MAC_Address", "Unheard"}) {
        EXPECT_EQ(Change(kBoard, keyword, "1"), OAMERR_ACCESS_DENIED) << keyword;
    }
}

TEST_F(PciBoardKeywords, AreStoredAsTheRulesSpellThem) {
    ASSERT_EQ(Change(kBoard, "AutoStart", "yes"), OAM_SUCCESS);
    ASSERT_EQ(Change(kBoard, "Number", "0012"), OAM_SUCCESS);
    EXPECT_EQ(StoredKeywordOf(kBoard, "AutoStart"), Is("Yes"));
    EXPECT_EQ(StoredKeywordOf(kBoard, "Number"), Is("12"));
}

TEST_F(PciBoardKeywords, ComeBackToABoardThatLostThem) {
    ASSERT_EQ(_oamExit(), OAM_SUCCESS);
    ASSERT_TRUE(home.Exists("oam/cfg/Obj0.xmo"));
    auto entries = StandardEntries(kBoard, "PCI-ETHERNET");
    entries.emplace_back("Number", "0");
    home.WriteDataFile("Obj0.xmo", DataFile(kBoard, entries));
    Start();
    EXPECT_EQ(KeywordOf(kBoard, "AutoStart"), Fails(OAMERR_NOT_FOUND));
    ASSERT_EQ(Change(kBoard, "AutoStart", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf(kBoard, "Driver.Name"), Is(""));
    EXPECT_EQ(QualifierOf(kBoard, "AutoStart", "Choices.Count"), Is("2"));
}

TEST_F(PciBoardKeywords, MayBeAddedByAProvider) {
    const unsigned long handle = Open(kBoard, kProvider);
    EXPECT_EQ(_oamSetKeyword(handle, "Remark", "in the left rack"), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(handle, "Remark", "a<b"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf(kBoard, "Remark"), Is("in the left rack"));
}

TEST_F(PciBoardKeywords, GoWithTheBoard) {
    EXPECT_EQ(_oamDeleteBoard(kBoard), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre(kPci, "Supervisor"));
}

}  // namespace
}  // namespace oam::test
