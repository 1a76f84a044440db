// Starting, stopping, testing and asking boards, against a kernel that obeys.
#include "pci_test.h"

namespace oam::test {
namespace {

using namespace oam::pci;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PciOperations : public PciTest {
  protected:
    void SetUp() override {
        PciTest::SetUp();
        kernel.AddDriver(kDriver);
        kernel.AddDriver("vfio-pci", Knows::kNone);
    }

    // What the service says of the outcome, and before it the plug-in of its cause.
    std::vector<Said> Start(const std::string& board = kBoard) {
        alerts.Clear();
        EXPECT_EQ(_oamStartBoard(board.c_str(), OAM_SYNCHRONIZED), OAM_SUCCESS);
        return alerts.HeardFrom(board);
    }
    std::vector<Said> Stop(const std::string& board = kBoard) {
        alerts.Clear();
        EXPECT_EQ(_oamStopBoard(board.c_str(), OAM_SYNCHRONIZED), OAM_SUCCESS);
        auto heard = alerts.HeardFrom(board);
        std::erase_if(heard, [](const Said& said) { return said.code == OAMEVN_STOPBOARD_REQ; });
        return heard;
    }
    std::vector<Said> RunTest(unsigned value = 0) {
        alerts.Clear();
        EXPECT_EQ(_oamTestBoard(kBoard, value), OAM_SUCCESS);
        EXPECT_TRUE(alerts.WaitForCode(OAMEVN_TESTBOARD_DONE));
        return alerts.HeardFrom(kBoard);
    }
    static Answer Status(unsigned selector) {
        int status = -1;
        const unsigned code = _oamBoardGetStatus(kBoard, selector, &status);
        return {code, code ? "" : std::to_string(status)};
    }

    static Said Cause(const std::string& text) { return {OAMEVN_ALERT, OAM_ERROR, kBoard, text}; }
    const Said kStarted{OAMEVN_STARTBOARD_DONE, OAM_INFORMATION, kBoard, "Board is started.\n"};
    const Said kNotStarted{OAMEVN_STARTBOARD_DONE, OAM_ERROR, kBoard, "Failed to start board.\n"};
    const Said kStopped{OAMEVN_STOPBOARD_DONE, OAM_INFORMATION, kBoard, "Board is stopped."};
    const Said kNotStopped{OAMEVN_STOPBOARD_DONE, OAM_ERROR, kBoard, "Failed to stop board."};
    const Said kPassed{OAMEVN_TESTBOARD_DONE, OAM_INFORMATION, kBoard,
                       "Test of board was successful."};
    const Said kFailedTest{OAMEVN_TESTBOARD_DONE, OAM_ERROR, kBoard, "Test of board failed."};
};

TEST_F(PciOperations, LeaveDriversAloneUntilThatIsAllowed) {
    StartWithBoards();
    EXPECT_EQ(Change(kPci, "Driver.Control", "No"), OAM_SUCCESS);
    EXPECT_THAT(Start(), ElementsAre(Cause("start: PCI_CONTROL_OFF"), kNotStarted));
    EXPECT_EQ(host.Holder(kCard), "");
    EXPECT_THAT(Stop(), ElementsAre(kStopped));
    EXPECT_EQ(Change(kPci, "Driver.Control", "Yes"), OAM_SUCCESS);
    EXPECT_THAT(Start(), ElementsAre(kStarted));
    EXPECT_EQ(Change(kPci, "Driver.Control", "No"), OAM_SUCCESS);
    EXPECT_THAT(Stop(), ElementsAre(Cause("stop: PCI_CONTROL_OFF"), kNotStopped));
    EXPECT_EQ(host.Holder(kCard), kDriver);
    EXPECT_THAT(Start(), ElementsAre(kStarted)) << "it has its driver";
}

TEST_F(PciOperations, BindAndUnbindTheDriver) {
    StartWithBoards();
    EXPECT_THAT(Start(), ElementsAre(kStarted));
    EXPECT_EQ(host.Holder(kCard), kDriver);
    EXPECT_THAT(Stop(), ElementsAre(kStopped));
    EXPECT_EQ(host.Holder(kCard), "");
    EXPECT_THAT(kernel.Orders(), ElementsAre("probe 0000:03:00.0", "unbind e1000e 0000:03:00.0"));
}

TEST_F(PciOperations, StartWithTheDriverThatTheUserNames) {
    StartWithBoards();
    ASSERT_EQ(Change(kBoard, "Driver.Name", "vfio-pci"), OAM_SUCCESS);
    EXPECT_THAT(Start(), ElementsAre(kStarted));
    EXPECT_EQ(host.Holder(kCard), "vfio-pci");
}

TEST_F(PciOperations, SucceedWhenThereIsNothingToDo) {
    StartWithBoards();
    EXPECT_THAT(Stop(), ElementsAre(kStopped));
    host.Hold(kCard, kDriver);
    EXPECT_THAT(Start(), ElementsAre(kStarted));
    EXPECT_THAT(kernel.Orders(), IsEmpty());
}

TEST_F(PciOperations, TellWhyAStartFailed) {
    StartWithBoards();
    ASSERT_EQ(Change(kBoard, "Driver.Name", "unheard"), OAM_SUCCESS);
    EXPECT_THAT(Start(),
                ElementsAre(Cause("start of 0000:03:00.0: PCI_NO_SUCH_DRIVER"), kNotStarted));
}

TEST_F(PciOperations, WaitForTheDriverOnlySoLong) {
    WriteSettings({{"Timing.BindMs", "20"}});
    StartWithBoards();
    kernel.Ignore(kCard);
    EXPECT_THAT(Start(), ElementsAre(Cause("start of 0000:03:00.0: PCI_NOT_BOUND"), kNotStarted));
    host.Hold(kCard, kDriver);
    EXPECT_THAT(Stop(), ElementsAre(Cause("stop of 0000:03:00.0: PCI_STILL_BOUND"), kNotStopped));
}

TEST_F(PciOperations, StartAllFunctionsOfABoardOrNone) {
    constexpr const char* kSecond = "0000:03:00.1";
    host.Add({.address = kSecond});
    StartWithBoards();
    EXPECT_THAT(Start(), ElementsAre(kStarted));
    EXPECT_EQ(host.Holder(kSecond), kDriver);
    EXPECT_EQ(Status(0), Is("2"));
    EXPECT_THAT(Stop(), ElementsAre(kStopped));
    EXPECT_EQ(Status(0), Is("0"));

    kernel.Ignore(kSecond);
    EXPECT_THAT(Start(), ElementsAre(Cause("start of 0000:03:00.1: PCI_NOT_BOUND"), kNotStarted));
    EXPECT_EQ(host.Holder(kCard), "");
    host.Hold(kCard, kDriver);
    EXPECT_EQ(Status(0), Is("1"));
}

TEST_F(PciOperations, AreRefusedWithoutABoardInTheSlot) {
    StartWithBoards();
    ASSERT_EQ(Change(kBoard, "Location.PCI.Slot", "9"), OAM_SUCCESS);
    EXPECT_THAT(Start(), ElementsAre(Cause("start: PCI_NOT_IN_SLOT"), kNotStarted));
    EXPECT_THAT(Stop(), ElementsAre(Cause("stop: PCI_NOT_IN_SLOT"), kNotStopped));
    EXPECT_THAT(RunTest(), ElementsAre(Cause("test: PCI_NOT_IN_SLOT"), kFailedTest));
    EXPECT_EQ(Status(0), Fails(PCI_NOT_IN_SLOT));
    EXPECT_EQ(_oamSendBuffer(kBoard, "x", 1), PCI_NOT_IN_SLOT);
}

TEST_F(PciOperations, NeverTouchADeviceOfAnotherProduct) {
    StartWithBoards();
    host.Hold(kCard, kDriver);
    host.Write(host.Device(kCard) / "class", "0x040200\n");
    EXPECT_THAT(Stop(), ElementsAre(Cause("stop: PCI_WRONG_PRODUCT"), kNotStopped));
    host.Write(host.Device(kCard) / "class", "0x010802\n");
    EXPECT_THAT(Stop(), ElementsAre(Cause("stop: PCI_NOT_IN_SLOT"), kNotStopped));
    EXPECT_EQ(host.Holder(kCard), kDriver);
    EXPECT_THAT(kernel.Orders(), IsEmpty());
}

TEST_F(PciOperations, StopMarkedBoardsWhenTheServiceEnds) {
    StartWithBoards();
    ASSERT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    ASSERT_EQ(Change(kBoard, "AutoStop", "Yes"), OAM_SUCCESS);
    EXPECT_THAT(Start(), ElementsAre(kStarted));
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(host.Holder(kCard), "");
}

TEST_F(PciOperations, TestWhetherTheDeviceAnswers) {
    host.AddInterface(kCard, "eth0", "02:00:00:00:00:01", "1", "up");
    StartWithBoards();
    EXPECT_THAT(RunTest(), ElementsAre(kPassed));
}

TEST_F(PciOperations, FailATestWhenNobodyAnswers) {
    StartWithBoards();
    host.Write(host.Device(kCard) / "config", std::string(64, '\xff'));
    EXPECT_THAT(RunTest(), ElementsAre(Cause("test of 0000:03:00.0: PCI_NO_ANSWER"), kFailedTest));
}

TEST_F(PciOperations, FailATestWhenAnotherDeviceAnswers) {
    StartWithBoards();
    host.Write(host.Device(kCard) / "config", configuration(0x8086, 0x9999));
    EXPECT_THAT(RunTest(),
                ElementsAre(Cause("test of 0000:03:00.0: PCI_OTHER_DEVICE"), kFailedTest));
}

TEST_F(PciOperations, FailATestWithoutALink) {
    host.AddInterface(kCard, "eth0", "02:00:00:00:00:01", "0", "down");
    StartWithBoards();
    EXPECT_THAT(RunTest(), ElementsAre(Cause("test of 0000:03:00.0: PCI_NO_LINK"), kFailedTest));
}

TEST_F(PciOperations, TestTheConfigurationAloneWhenAskedTo) {
    host.AddInterface(kCard, "eth0", "02:00:00:00:00:01", "0", "down");
    StartWithBoards();
    EXPECT_THAT(RunTest(1), ElementsAre(kPassed));
}

TEST_F(PciOperations, TestTheLinkAloneWhenAskedTo) {
    host.AddInterface(kCard, "eth0", "02:00:00:00:00:01", "1", "up");
    StartWithBoards();
    host.Write(host.Device(kCard) / "config", "");
    EXPECT_THAT(RunTest(2), ElementsAre(kPassed));
}

TEST_F(PciOperations, RefuseATestThatNobodyKnows) {
    StartWithBoards();
    EXPECT_THAT(RunTest(4), ElementsAre(Cause("test: OAMERR_BOARD_SELFTEST_INVALID"), kFailedTest));
}

TEST_F(PciOperations, AnswerDriverLinkAndInterfaces) {
    StartWithBoards();
    EXPECT_EQ(Status(0), Is("0"));
    EXPECT_EQ(Status(1), Is("0"));
    EXPECT_EQ(Status(2), Is("0"));
    host.Hold(kCard, kDriver);
    host.AddInterface(kCard, "eth0", "02:00:00:00:00:01", "", "down");
    EXPECT_EQ(Status(0), Is("2"));
    EXPECT_EQ(Status(1), Is("1"));
    host.AddInterface(kCard, "eth1", "02:00:00:00:00:02", "0", "down");
    EXPECT_EQ(Status(1), Is("2"));
    host.AddInterface(kCard, "eth2", "02:00:00:00:00:03", "1", "up");
    EXPECT_EQ(Status(1), Is("3"));
    EXPECT_EQ(Status(2), Is("3"));
    EXPECT_EQ(Status(3), Fails(OAMERR_NOT_SUPPORTED_WARNING));
    EXPECT_EQ(_oamBoardGetStatus(kBoard, 0, nullptr), OAMERR_GET_BOARD_STATUS_FAIL);
}

TEST_F(PciOperations, TakeNoBuffers) {
    StartWithBoards();
    EXPECT_EQ(_oamSendBuffer(kBoard, "x", 1), OAMERR_NOT_SUPPORTED_WARNING);
}

TEST_F(PciOperations, HaveNamesForTheirCodes) {
    StartWithBoards();
    EXPECT_STREQ(_oamGetText(PCI_NOT_IN_SLOT), "PCI_NOT_IN_SLOT");
    EXPECT_EQ(_oamGetText(0x50020000), nullptr);
}

}  // namespace
}  // namespace oam::test
