// Starting, stopping, testing and what a trainer does to a board.
#include <filesystem>
#include <iterator>
#include <thread>

#include "sim_codes.h"
#include "sim_test.h"

namespace oam::test {
namespace {

using ::testing::Contains;

// A chassis of one board that needs an hour to start.
constexpr const char* kSlowChassis =
    "board: Slow\nproduct: SIM-E1\nbus: 1\nslot: 2\nstart-time: 60m\nstop-time: 0\n";

std::ptrdiff_t threadCount() {
    const std::filesystem::directory_iterator threads("/proc/self/task");
    return std::distance(begin(threads), end(threads));
}

class SimOperationsTest : public SimTest {};

TEST_F(SimOperationsTest, RunABoardThroughItsLife) {
    StartWithBoards();
    EXPECT_EQ(Status("Left", 0), 0);
    EXPECT_EQ(StartBoard("Left"), Done(OAMEVN_STARTBOARD_DONE, "Left", "Board is started.\n"));
    EXPECT_EQ(Status("Left", 0), 2);
    EXPECT_EQ(Status("Left", 1), 350);
    EXPECT_EQ(Status("Left", 2), 3000);
    EXPECT_EQ(TestBoard("Left"),
              Done(OAMEVN_TESTBOARD_DONE, "Left", "Test of board was successful."));
    EXPECT_EQ(Status("Left", 0), 2);
    EXPECT_EQ(StopBoard("Left"), Done(OAMEVN_STOPBOARD_DONE, "Left", "Board is stopped."));
    EXPECT_EQ(Status("Left", 0), 0);
    int status = 0;
    EXPECT_EQ(_oamBoardGetStatus("Left", 4, &status), OAMERR_NOT_SUPPORTED_WARNING);
}

TEST_F(SimOperationsTest, EndAsTheScriptsSay) {
    WriteChassis(std::string(kQuickChassis) +
                 "start: fail, hang 1ms, ok\nstop: code 0x50001234, ok\ntest: fail\n");
    StartWithBoards();
    const auto failedStart = Failed(OAMEVN_STARTBOARD_DONE, "Right", "Failed to start board.\n");
    EXPECT_EQ(StartBoard("Right"), failedStart);
    EXPECT_EQ(Status("Right", 0), 5);
    EXPECT_EQ(StartBoard("Right"), failedStart);
    EXPECT_EQ(StartBoard("Right").severity, OAM_INFORMATION);
    EXPECT_EQ(StopBoard("Right"), Failed(OAMEVN_STOPBOARD_DONE, "Right", "Failed to stop board."));
    EXPECT_EQ(StopBoard("Right").severity, OAM_INFORMATION);
    EXPECT_EQ(TestBoard("Right"), Failed(OAMEVN_TESTBOARD_DONE, "Right", "Test of board failed."));
}

TEST_F(SimOperationsTest, EndAsTheKeywordsSayWithoutAScript) {
    StartWithBoards();
    EXPECT_EQ(Change("sim.bpi", "Failure.Start", "4000010C"), OAM_SUCCESS);
    EXPECT_EQ(StartBoard("Left").severity, OAM_ERROR);
    EXPECT_EQ(Change("sim.bpi", "Failure.Start", "0"), OAM_SUCCESS);
    EXPECT_EQ(StartBoard("Left").severity, OAM_INFORMATION);
}

TEST_F(SimOperationsTest, RunOnAllBoardsAtOnce) {
    StartWithBoards();
    EXPECT_EQ(_oamStartBoard(nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(Outcome(OAMEVN_STARTBOARD_DONE, "Left").severity, OAM_INFORMATION);
    EXPECT_EQ(Outcome(OAMEVN_STARTBOARD_DONE, "Right").severity, OAM_INFORMATION);
    EXPECT_EQ(_oamStopBoard(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(Status("Left", 0), 0);
    EXPECT_EQ(Status("Right", 0), 0);
}

TEST_F(SimOperationsTest, LeaveTheOtherBoardsAlone) {
    WriteChassis(std::string(kQuickChassis) +
                 "board: Slow\nproduct: SIM-E1\nbus: 3\nslot: 3\nstart-time: 60m\n");
    StartWithBoards();
    EXPECT_EQ(_oamStartBoard("Slow", 0), OAM_SUCCESS);
    EXPECT_TRUE(ReachesState("Slow", 1));
    EXPECT_EQ(StartBoard("Left").severity, OAM_INFORMATION);
    EXPECT_EQ(Status("Slow", 0), 1);
}

TEST_F(SimOperationsTest, SurviveARenameMeanwhile) {
    WriteChassis(kSlowChassis);
    StartWithBoards();
    EXPECT_EQ(_oamStartBoard("Slow", 0), OAM_SUCCESS);
    EXPECT_TRUE(ReachesState("Slow", 1));
    EXPECT_EQ(Change("Slow", "Name", "Renamed"), OAM_SUCCESS);
    EXPECT_EQ(Status("Renamed", 0), 1);
    EXPECT_EQ(Send("Renamed", "dead"), OAM_SUCCESS);
    EXPECT_TRUE(alerts.WaitForCode(OAMEVN_BOARD_DEAD, 1, "Renamed"));
    EXPECT_TRUE(alerts.WaitForCode(OAMEVN_STARTBOARD_DONE));
}

TEST_F(SimOperationsTest, EndAtOnceWhenTheBoardIsDeleted) {
    WriteChassis(kSlowChassis);
    StartWithBoards();
    EXPECT_EQ(_oamStartBoard("Slow", 0), OAM_SUCCESS);
    EXPECT_TRUE(ReachesState("Slow", 1));
    EXPECT_EQ(_oamDeleteBoard("Slow"), OAM_SUCCESS);
    EXPECT_EQ(Outcome(OAMEVN_STARTBOARD_DONE, "Slow").severity, OAM_ERROR);
    EXPECT_THAT(Objects(), ::testing::ElementsAre("sim.bpi", "Supervisor"));
}

TEST_F(SimOperationsTest, EndAtOnceWhenTheServiceDoes) {
    // With the first thread a sanitizer starts one of its own.
    std::thread([] {}).join();
    const auto threads = threadCount();
    WriteChassis(kSlowChassis);
    StartWithBoards();
    EXPECT_EQ(_oamStartBoard("Slow", 0), OAM_SUCCESS);
    EXPECT_TRUE(ReachesState("Slow", 1));
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    // The service's own start-up thread takes some seconds; the operation would take an hour.
    EXPECT_TRUE(Becomes([&] { return threadCount() <= threads; }));
}

TEST_F(SimOperationsTest, StopABoardThatIsMarkedForItWhenTheServiceEnds) {
    StartWithBoards();
    EXPECT_EQ(StartBoard("Left").severity, OAM_INFORMATION);
    EXPECT_EQ(Change("Left", "AutoStop", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), Contains(Done(OAMEVN_STOPBOARD_DONE, "Left", "Board is stopped.")));
}

TEST_F(SimOperationsTest, FailOnABoardThatIsPulledUntilItIsPutBack) {
    StartWithBoards();
    EXPECT_EQ(StartBoard("Left").severity, OAM_INFORMATION);
    EXPECT_EQ(Send("Left", "remove"), OAM_SUCCESS);
    EXPECT_TRUE(alerts.WaitForCode(OAMEVN_BOARD_DEAD, 1, "Left"));
    ASSERT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "DetectedBoards.Count"), Is("1"));
    int status = 0;
    EXPECT_EQ(_oamBoardGetStatus("Left", 0, &status), sim::SIM_BOARD_NOT_IN_SLOT);
    EXPECT_EQ(StartBoard("Left").severity, OAM_ERROR);
    EXPECT_EQ(Send("Left", "insert"), OAM_SUCCESS);
    EXPECT_EQ(StartBoard("Left").severity, OAM_INFORMATION);
}

TEST_F(SimOperationsTest, FailOnABoardOfAnotherProduct) {
    StartWithBoards();
    EXPECT_EQ(Change("Left", "Location.PCI.Slot", "3"), OAM_SUCCESS);
    EXPECT_EQ(StartBoard("Left").severity, OAM_ERROR);
    int status = 0;
    EXPECT_EQ(_oamBoardGetStatus("Left", 0, &status), sim::SIM_WRONG_PRODUCT);
}

TEST_F(SimOperationsTest, ObeyATrainersCommands) {
    StartWithBoards();
    EXPECT_EQ(Send("Left", "fail start 2"), OAM_SUCCESS);
    EXPECT_EQ(StartBoard("Left").severity, OAM_ERROR);
    EXPECT_EQ(StartBoard("Left").severity, OAM_ERROR);
    EXPECT_EQ(StartBoard("Left").severity, OAM_INFORMATION);
    EXPECT_EQ(Send("Left", "temperature 850"), OAM_SUCCESS);
    EXPECT_EQ(Send("Left", "fan 900"), OAM_SUCCESS);
    EXPECT_EQ(Status("Left", 1), 850);
    EXPECT_EQ(Status("Left", 2), 900);
    EXPECT_EQ(Send("Left", "sing"), OAMERR_SEND_BUFFER_FAIL);
    EXPECT_EQ(_oamSendBuffer("Left", nullptr, 0), OAMERR_SEND_BUFFER_FAIL);
    EXPECT_THAT(alerts.Heard(), Contains(Failed(OAMEVN_TEMPERATURE_ALERT, "Left",
                                                "The board's temperature is 85.0 degrees.")));
    EXPECT_THAT(alerts.Heard(), Contains(Said{OAMEVN_FAN_RPM_WARNING, OAM_WARNING, "Left",
                                              "The board's fan turns at 900 revolutions per "
                                              "minute."}));
}

TEST_F(SimOperationsTest, LetABoardTellItsCurveByItself) {
    WriteChassis(std::string(kQuickChassis) + "temperature: 350, 710 after 10ms, 900 after 20ms\n");
    StartWithBoards();
    EXPECT_EQ(StartBoard("Right").severity, OAM_INFORMATION);
    EXPECT_TRUE(alerts.WaitForCode(OAMEVN_TEMPERATURE_ALERT, 1, "Right"));
}

TEST_F(SimOperationsTest, HaveCodesWithNames) {
    EXPECT_EQ(_oamGetText(0x50000001), nullptr);
    Start();
    EXPECT_STREQ(_oamGetText(0x50000001), "SIM_BOARD_NOT_IN_SLOT");
    EXPECT_EQ(_oamGetText(0x50000099), nullptr);
}

TEST_F(SimOperationsTest, AllowAReceiverToCallBack) {
    StartWithBoards();
    alerts.AnswerWith([&](const Alert& alert) {
        if (alert.code != OAMEVN_BOARD_DEAD) return 0u;
        EXPECT_EQ(Status("Left", 0), 5);
        EXPECT_EQ(KeywordOf("Left", "Eeprom.SerialNum"), Is("S12"));
        return 0u;
    });
    EXPECT_EQ(Send("Left", "dead"), OAM_SUCCESS);
    EXPECT_TRUE(alerts.WaitForCode(OAMEVN_BOARD_DEAD, 1, "Left"));
}

}  // namespace
}  // namespace oam::test
