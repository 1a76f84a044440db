// A board's keywords as a client changes them.
#include "sim_test.h"

namespace oam::test {
namespace {

class SimKeywordsTest : public SimTest {
  protected:
    void SetUp() override {
        SimTest::SetUp();
        StartWithBoards();
    }
};

TEST_F(SimKeywordsTest, TakeGoodValuesAndStoreChoicesAsSpelled) {
    EXPECT_EQ(Change("Left", "XLaw", "a-law"), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Left", "XLaw"), Is("A-LAW"));
    EXPECT_EQ(Change("Left", "AutoStart", "YES"), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Left", "AutoStart"), Is("Yes"));
    EXPECT_EQ(Change("Left", "Number", "77"), OAM_SUCCESS);
    unsigned number = 0;
    EXPECT_EQ(_oamBoardGetNumber("Left", &number), OAM_SUCCESS);
    EXPECT_EQ(number, 77u);
}

TEST_F(SimKeywordsTest, RefuseBadValuesAndKeepTheOldOnes) {
    EXPECT_EQ(Change("Left", "Location.PCI.Bus", "256"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(Change("Left", "Location.PCI.Slot", "one"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(Change("Left", "Clocking.HBus.ClockMode", "FAST"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(Change("Left", "Driver.Name", "a<b"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(Change("Left", "Driver.Name", " x"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(Change("Left", "Driver.Name", std::string(2048, 'x')), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(KeywordOf("Left", "Location.PCI.Bus"), Is("1"));
    EXPECT_EQ(KeywordOf("Left", "Driver.Name"), Is("sim"));
}

TEST_F(SimKeywordsTest, RefuseWhatOnlyThePlugInChanges) {
    EXPECT_EQ(Change("Left", "Eeprom.SerialNum", "X"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Change("Left", "Product", "SIM-IP"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Change("Left", "Eeprom.SerialNum?ReadOnly", "No"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Change("sim.bpi", "Name", "other"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Change("Left", "Unknown.Keyword", "x"), OAMERR_ACCESS_DENIED);
}

TEST_F(SimKeywordsTest, DescribeThemselves) {
    EXPECT_EQ(QualifierOf("Left", "Location.PCI.Slot", "Max"), Is("31"));
    EXPECT_EQ(QualifierOf("Left", "Number", "Type"), Is("Integer"));
    EXPECT_EQ(QualifierOf("Left", "XLaw", "Choices[1]"), Is("MU-LAW"));
    EXPECT_EQ(QualifierOf("Left", "XLaw", "Base"), Is("10"));
    EXPECT_EQ(QualifierOf("Left", "XLaw", "Colour"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(SimKeywordsTest, FollowTheSlotThatTheBoardIsMovedTo) {
    EXPECT_EQ(Change("Left", "Location.PCI.Slot", "3"), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Left", "Eeprom.SerialNum"), Is("S13"));
    EXPECT_EQ(KeywordOf("Left", "NetworkInterface.Ethernet.Count"), Is("2"));
    char text[128] = "";
    EXPECT_EQ(_oamBoardGetMACAddress("Left", text, sizeof text, 1), OAM_SUCCESS);
    EXPECT_STREQ(text, "02:00:53:00:00:14");
    EXPECT_EQ(Change("Left", "Location.PCI.Slot", "9"), OAM_SUCCESS);
    EXPECT_EQ(_oamBoardGetSerialNumber("Left", text, sizeof text), OAM_SUCCESS);
    EXPECT_STREQ(text, "");
}

TEST_F(SimKeywordsTest, DoNotMoveTheBoardWhenTheChangeIsRefused) {
    const auto handle = Open("Left", kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "Location.PCI.Slot", "3"), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(handle, "Name", "Right"), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(_oamSetKeyword(handle, "Number", "500"), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(handle, "Number", "1"), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(Change("Left", "Location.PCI.Slot", "2"), OAM_SUCCESS);
    EXPECT_EQ(StartBoard("Left").severity, OAM_INFORMATION);
}

TEST_F(SimKeywordsTest, ComeBackFromTheirFilesAfterARestart) {
    EXPECT_EQ(Change("Left", "Driver.BoardId", "a, b; 100%"), OAM_SUCCESS);
    EXPECT_EQ(Change("Left", "Name", "Renamed board"), OAM_SUCCESS);
    ASSERT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Renamed board", "Driver.BoardId"), Is("a, b; 100%"));
    EXPECT_EQ(Change("Renamed board", "XLaw", "what"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(StartBoard("Renamed board").severity, OAM_INFORMATION);
}

TEST_F(SimKeywordsTest, SurviveExportAndImport) {
    EXPECT_EQ(Change("Right", "Fan.Warning", "2900"), OAM_SUCCESS);
    const auto file = home.Path("all.xml");
    ASSERT_EQ(_oamConfigExport(file.c_str()), OAM_SUCCESS);
    ASSERT_EQ(_oamDeleteBoard("Right"), OAM_SUCCESS);
    ASSERT_EQ(_oamConfigImport(file.c_str()), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Right", "Fan.Warning"), Is("2900"));
    EXPECT_EQ(StartBoard("Right").severity, OAM_INFORMATION);
    EXPECT_EQ(Send("Right", "fan 2899"), OAM_SUCCESS);
    EXPECT_TRUE(alerts.WaitForCode(OAMEVN_FAN_RPM_WARNING, 1, "Right"));
}

}  // namespace
}  // namespace oam::test
