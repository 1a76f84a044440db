// What the service learns of the chassis: products, detected boards, and the boards made of them.
#include "sim_test.h"

namespace oam::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

std::string lookUpSerial(const char* serial) {
    char name[128] = "";
    EXPECT_EQ(_oamBoardLookupBySerialNumber(serial, name, sizeof name), OAM_SUCCESS);
    return name;
}

class SimChassisTest : public SimTest {};

TEST_F(SimChassisTest, OffersItsProductsFromTheFirstStart) {
    Start();
    EXPECT_EQ(KeywordOf("Supervisor", "Products.Count"), Is("2"));
    EXPECT_EQ(KeywordOf("Supervisor", "Products[0]"), Is("SIM-E1"));
    EXPECT_EQ(KeywordOf("Supervisor", "Products[1]"), Is("SIM-IP"));
    EXPECT_EQ(KeywordOf("sim.bpi", "Timing.StartMs"), Is("300"));
    EXPECT_EQ(QualifierOf("sim.bpi", "Timing.StartMs", "Max"), Is("3600000"));
    EXPECT_EQ(QualifierOf("sim.bpi", "Timing.StartMs", "Choices.Count"), Is("0"));
}

TEST_F(SimChassisTest, TellsTheServiceWhatItDetects) {
    Start();
    ASSERT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "DetectedBoards.Count"), Is("2"));
    EXPECT_EQ(KeywordOf("sim.bpi", "DetectedBoards[1].Name"), Is("Right"));
    EXPECT_EQ(StoredKeywordOf("sim.bpi", "DetectedBoards.Count"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(SimChassisTest, BecomesConfiguredBoardsWithTheirIdentities) {
    StartWithBoards();
    EXPECT_EQ(lookUpSerial("S12"), "Left");
    EXPECT_EQ(lookUpSerial("S13"), "Right");
    char text[128] = "";
    ASSERT_EQ(_oamBoardLookupByMACAddress("02:00:53:00:00:14", text, sizeof text), OAM_SUCCESS);
    EXPECT_STREQ(text, "Right");
    ASSERT_EQ(_oamBoardLookupByBusSlot(1, 2, text, sizeof text), OAM_SUCCESS);
    EXPECT_STREQ(text, "Left");
    unsigned shelf = 0, slot = 0, number = 9;
    EXPECT_EQ(_oamBoardGetShelfSlot("Left", &shelf, &slot), OAM_SUCCESS);
    EXPECT_EQ(shelf, 32u);
    EXPECT_EQ(_oamBoardGetNumber("Left", &number), OAM_SUCCESS);
    EXPECT_EQ(number, 0u);
    EXPECT_EQ(_oamAddDetectedBoard("Left"), OAMERR_ALREADY_EXISTS);
}

TEST_F(SimChassisTest, IsTheBuiltInOneWithoutAFile) {
    home.Remove("oam/cfg/sim.chassis");
    StartWithBoards();
    EXPECT_THAT(Objects(), ElementsAre("Sim E1 left", "Sim E1 right", "Sim IP lower",
                                       "Sim IP upper", "sim.bpi", "Supervisor"));
}

TEST_F(SimChassisTest, IsReadAgainAtEachDetection) {
    StartWithBoards();
    WriteChassis("board: New\nproduct: SIM-E1\nbus: 7\nslot: 7\nbattery: full\n");
    alerts.Clear();
    ASSERT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "DetectedBoards.Count"), Is("1"));
    EXPECT_THAT(alerts.Heard(), Contains(Failed(OAMEVN_ALERT, "sim.bpi",
                                                "sim.chassis:5: unknown key \"battery\".")));
    EXPECT_EQ(StartBoard("Left"),
              Failed(OAMEVN_STARTBOARD_DONE, "Left", "Failed to start board.\n"));
    ASSERT_EQ(_oamAddDetectedBoard("new"), OAM_SUCCESS);
    EXPECT_EQ(StartBoard("New").severity, OAM_INFORMATION);
}

TEST_F(SimChassisTest, IsWrittenToTheStartUpLogWhenItIsBad) {
    WriteChassis("board\n");
    Start();
    EXPECT_THAT(home.Read("oam/log/startup.log"),
                ::testing::HasSubstr("sim.bpi(E): sim.chassis:1: no \"key: value\": \"board\"."));
}

TEST_F(SimChassisTest, SurvivesAHandEditedObject) {
    home.WriteDataFile("sim.xmo", DataFile("sim.bpi", {{"Chassis.File", "/etc/passwd"},
                                                       {"Name", "sim.bpi"},
                                                       {"Products.Count", "3"},
                                                       {"Products[0]", "SIM-IP"},
                                                       {"Products[1]", "sim-ip"},
                                                       {"Timing.StopMs", "7"}}));
    Start();
    EXPECT_EQ(KeywordOf("Supervisor", "Products.Count"), Is("3"));
    EXPECT_EQ(KeywordOf("sim.bpi", "Chassis.File"), Is("sim.chassis"));
    EXPECT_EQ(KeywordOf("sim.bpi", "Timing.StopMs"), Is("7"));
    EXPECT_THAT(alerts.Heard(), Contains(Failed(OAMEVN_ALERT, "sim.bpi",
                                                "\"Chassis.File\" was \"/etc/passwd\" and is now "
                                                "\"sim.chassis\".")));
}

TEST_F(SimChassisTest, GivesItsObjectALostNameBack) {
    home.WriteDataFile("sim.xmo", DataFile("sim.bpi", {{"Timing.StopMs", "7"}}));
    Start();
    EXPECT_EQ(KeywordOf("sim.bpi", "Name"), Is("sim.bpi"));
    EXPECT_EQ(KeywordOf("sim.bpi", "Timing.StopMs"), Is("7"));
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    home.WriteDataFile("sim.xmo", DataFile("sim.bpi", {{"Name", "lost"}}));
    Start();
    EXPECT_EQ(KeywordOf("sim.bpi", "Name"), Is("sim.bpi"));
}

TEST_F(SimChassisTest, ServesANewProductFromTheNextStartOn) {
    Start();
    const auto handle = Open("sim.bpi", kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "Products.Count", "3"), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(handle, "Products[2]", "SIM-X"), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "Products.Count"), Is("2"));
    ASSERT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "Products[2]"), Is("SIM-X"));
    EXPECT_EQ(CreateBoard("SIM-X"), "SIM-X 0");
}

}  // namespace
}  // namespace oam::test
