#include "simulation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

#include "fake_service.h"
#include "installation_directory.h"
#include "kit/alert_record.h"
#include "sim_codes.h"
#include "waiting.h"

namespace oam::sim {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kChassis = R"(
board: Left
product: SIM-E1
bus: 1
slot: 2
serial: S12
mac: 02:00:53:00:00:12
start-time: 0
stop-time: 0
test-time: 0

board: Right
product: SIM-IP
bus: 1
slot: 3
serial: S13
start-time: 60m
stop-time: 0
)";

class SimulationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        home_.WriteChassis(kChassis);
        service_.AddObject("sim.bpi");
        service_.AddObject("Supervisor");
        ASSERT_EQ(simulation_.Begin(), OAM_SUCCESS);
        ASSERT_THAT(service_.Alerts(), IsEmpty());
    }
    void TearDown() override { simulation_.End(); }

    void Create(const std::string& name, const std::string& product, unsigned int slot) {
        service_.AddObject(name, product);
        ASSERT_EQ(simulation_.CreateBoard(name, product), OAM_SUCCESS);
        Move(name, slot);
    }
    void Move(const std::string& name, unsigned int slot) {
        const auto handle = Open(name, OAM_OPEN_WRITE);
        EXPECT_EQ(simulation_.SetKeyword(handle, "Location.PCI.Bus", "1"), OAM_SUCCESS);
        EXPECT_EQ(simulation_.SetKeyword(handle, "Location.PCI.Slot", std::to_string(slot)),
                  OAM_SUCCESS);
        Close(handle);
    }

    unsigned long Open(const std::string& name, unsigned int mode) {
        const auto handle = service_.Open(name, mode);
        EXPECT_EQ(simulation_.OpenObject(handle, mode), OAM_SUCCESS);
        return handle;
    }
    void Close(unsigned long handle) {
        EXPECT_EQ(simulation_.CloseObject(handle), OAM_SUCCESS);
        service_.Close(handle);
    }
    oam_result Change(const std::string& object, const std::string& keyword,
                      const std::string& value, unsigned int mode = OAM_OPEN_WRITE) {
        const auto handle = Open(object, mode);
        const auto result = simulation_.SetKeyword(handle, keyword, value);
        Close(handle);
        return result;
    }
    std::string Get(unsigned long handle, const std::string& keyword) {
        char text[128];
        const auto failed = simulation_.GetKeyword(handle, keyword, text, sizeof text);
        return failed ? "(" + std::to_string(failed) + ")" : text;
    }
    int Status(const std::string& board, unsigned int selector) {
        int status = -1;
        EXPECT_EQ(simulation_.GetBoardStatus(board, selector, &status), OAM_SUCCESS);
        return status;
    }
    void Hear(oam_result code, const std::string& source, const std::string& text) {
        simulation_.ReceiveAlert(kit::AlertRecord(code, OAM_INFORMATION, source, text).Message());
    }

    InstallationDirectory home_;
    FakeService service_;
    Simulation simulation_{"sim.bpi"};
};

TEST_F(SimulationTest, DetectsTheBoardsOfTheChassisFile) {
    simulation_.DetectBoards();
    const auto handle = Open("sim.bpi", OAM_OPEN_READ);
    EXPECT_EQ(Get(handle, "DetectedBoards.Count"), "2");
    EXPECT_EQ(Get(handle, "DetectedBoards[1].Name"), "Right");
    EXPECT_EQ(Get(handle, "DetectedBoards[1].Product"), "SIM-IP");
    EXPECT_EQ(Get(handle, "DetectedBoards[1].Location.PCI.Slot"), "3");
    EXPECT_EQ(Get(handle, "DetectedBoards[2].Name"), "(" + std::to_string(OAMERR_NOT_FOUND) + ")");
    EXPECT_EQ(Get(handle, "Products[0]"), "SIM-E1");
    char text[2];
    EXPECT_EQ(simulation_.GetKeyword(handle, "DetectedBoards.Count", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(simulation_.GetKeyword(handle, "DetectedBoards.Count", text, 1),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(simulation_.GetQualifier(handle, "DetectedBoards.Count", "ReadOnly", nullptr, 0),
              OAM_SUCCESS);
    EXPECT_EQ(simulation_.GetQualifier(handle, "DetectedBoards.Count", "Max", nullptr, 0),
              OAMERR_NOT_FOUND);
    Close(handle);
}

TEST_F(SimulationTest, AnswersDetectedBoardsOnItsOwnObjectAlone) {
    simulation_.DetectBoards();
    Create("Left", "SIM-E1", 2);
    const auto handle = Open("Left", OAM_OPEN_READ);
    EXPECT_EQ(simulation_.GetKeyword(handle, "DetectedBoards.Count", nullptr, 0), OAMERR_NOT_FOUND);
    EXPECT_EQ(simulation_.GetQualifier(handle, "DetectedBoards.Count", "ReadOnly", nullptr, 0),
              OAMERR_NOT_FOUND);
    Close(handle);
}

TEST_F(SimulationTest, TellsBadLinesWithFileAndLine) {
    home_.WriteChassis(std::string(kChassis) + "colour: red\n");
    simulation_.DetectBoards();
    EXPECT_THAT(service_.Alerts(),
                Contains(RaisedAlert{OAMEVN_ALERT, OAM_ERROR, "sim.bpi",
                                     "sim.chassis:19: unknown key \"colour\"."}));
    const auto handle = Open("sim.bpi", OAM_OPEN_READ);
    EXPECT_EQ(Get(handle, "DetectedBoards.Count"), "2");
    Close(handle);
}

TEST_F(SimulationTest, DetectsNoBoardOfAForeignProduct) {
    home_.WriteChassis(
        "board: Alien\nproduct: X\nbus: 3\nslot: 3\n"
        "board: Stranger\nproduct: X\nbus: 3\nslot: 4\n");
    simulation_.DetectBoards();
    EXPECT_THAT(
        service_.Alerts(),
        ElementsAre(RaisedAlert{OAMEVN_ALERT, OAM_ERROR, "sim.bpi",
                                "\"X\" is none of the products; its boards are not detected."}));
    const auto handle = Open("sim.bpi", OAM_OPEN_READ);
    EXPECT_EQ(Get(handle, "DetectedBoards.Count"), "0");
    Close(handle);
}

TEST_F(SimulationTest, ReadsTheFileThatTheKeywordNames) {
    EXPECT_EQ(Change("sim.bpi", "Chassis.File", "none.chassis"), OAM_SUCCESS);
    simulation_.DetectBoards();
    const auto handle = Open("sim.bpi", OAM_OPEN_READ);
    EXPECT_EQ(Get(handle, "DetectedBoards.Count"), "4");
    Close(handle);
}

TEST_F(SimulationTest, KeepsTheChassisWhenTheFileCannotBeRead) {
    std::filesystem::create_directory(home_.Configuration() / "dir");
    EXPECT_EQ(Change("sim.bpi", "Chassis.File", "dir"), OAM_SUCCESS);
    simulation_.DetectBoards();
    EXPECT_THAT(service_.Alerts(),
                Contains(RaisedAlert{OAMEVN_ALERT, OAM_ERROR, "sim.bpi",
                                     "dir: the file cannot be read; the chassis stays as it is."}));
    const auto handle = Open("sim.bpi", OAM_OPEN_READ);
    EXPECT_EQ(Get(handle, "DetectedBoards.Count"), "2");
    Close(handle);
}

TEST_F(SimulationTest, RefusesToStoreWhatItComputes) {
    EXPECT_EQ(Change("sim.bpi", "DetectedBoards.Count", "7", OAM_OPEN_WRITE | OAM_OPEN_PROVIDER),
              OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Change("sim.bpi", "Name", "other.bpi"), OAMERR_ACCESS_DENIED);
}

TEST_F(SimulationTest, AddsTheProductsThatANewCountNeeds) {
    const auto handle = Open("sim.bpi", OAM_OPEN_WRITE);
    EXPECT_EQ(simulation_.SetKeyword(handle, "Products.Count", "3"), OAM_SUCCESS);
    EXPECT_EQ(Get(handle, "Products[2]"), "SIM-2");
    EXPECT_EQ(simulation_.SetKeyword(handle, "Products[2]", "SIM-IP"),
              OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(simulation_.SetKeyword(handle, "Products[2]", "SIM-X"), OAM_SUCCESS);
    EXPECT_EQ(simulation_.SetKeyword(handle, "Products[3]", "SIM-Y"), OAMERR_ACCESS_DENIED);
    Close(handle);
    EXPECT_EQ(service_.Stored("sim.bpi", "Products[2]"), "SIM-X");
    EXPECT_THAT(service_.Alerts(), IsEmpty());
}

TEST_F(SimulationTest, RepairsItsOwnObjectAtTheNextStart) {
    simulation_.End();
    service_.Store("sim.bpi", "Timing.TestMs", "-1");
    Simulation next("sim.bpi");
    EXPECT_EQ(next.Begin(), OAM_SUCCESS);
    next.End();
    EXPECT_EQ(service_.Stored("sim.bpi", "Timing.TestMs"), "500");
    EXPECT_THAT(service_.Alerts(),
                Contains(RaisedAlert{OAMEVN_ALERT, OAM_ERROR, "sim.bpi",
                                     "\"Timing.TestMs\" was \"-1\" and is now \"500\"."}));
}

TEST_F(SimulationTest, CannotBeginWithoutItsObject) {
    Simulation lost("lost.bpi");
    EXPECT_EQ(lost.Begin(), OAMERR_NOT_FOUND);
    lost.End();
}

TEST_F(SimulationTest, PutsSerialNumberAndAddressesOfTheSlotIntoTheBoard) {
    Create("Board", "SIM-E1", 2);
    EXPECT_EQ(service_.Stored("Board", "Eeprom.SerialNum"), "S12");
    EXPECT_EQ(service_.Stored("Board", "NetworkInterface.Ethernet.Count"), "1");
    EXPECT_EQ(service_.Stored("Board", "NetworkInterface.Ethernet[0].MAC_Address"),
              "02:00:53:00:00:12");
    Move("Board", 3);
    EXPECT_EQ(service_.Stored("Board", "Eeprom.SerialNum"), "S13");
    EXPECT_EQ(service_.Stored("Board", "NetworkInterface.Ethernet.Count"), "0");
    Move("Board", 4);
    EXPECT_EQ(service_.Stored("Board", "Eeprom.SerialNum"), "");
}

TEST_F(SimulationTest, LeavesTheClientsProviderModeAsItIs) {
    Create("Board", "SIM-E1", 2);
    const auto handle = Open("Board", OAM_OPEN_WRITE);
    EXPECT_EQ(simulation_.SetKeyword(handle, "New.Keyword", "x"), OAMERR_ACCESS_DENIED);
    Close(handle);
    EXPECT_EQ(Change("Board", "New.Keyword", "x", OAM_OPEN_WRITE | OAM_OPEN_PROVIDER), OAM_SUCCESS);
}

TEST_F(SimulationTest, ChecksABoardsKeywords) {
    Create("Board", "SIM-E1", 2);
    EXPECT_EQ(Change("Board", "XLaw", "a-law"), OAM_SUCCESS);
    EXPECT_EQ(service_.Stored("Board", "XLaw"), "A-LAW");
    EXPECT_EQ(Change("Board", "XLaw", "B-LAW"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(Change("Board", "Location.PCI.Bus", "256"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(Change("Board", "Eeprom.SerialNum", "mine"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Change("Board", "Eeprom.SerialNum?ReadOnly", "No"), OAMERR_ACCESS_DENIED);
}

TEST_F(SimulationTest, CompletesAnImportedBoardWhenItIsOpenedForWriting) {
    service_.AddObject("Imported", "SIM-E1");
    EXPECT_EQ(Change("Imported", "XLaw", "what"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(service_.Stored("Imported", "XLaw"), "MU-LAW");
}

TEST_F(SimulationTest, RunsABoardThroughItsLife) {
    Create("Board", "SIM-E1", 2);
    EXPECT_EQ(Status("Board", 0), 0);
    EXPECT_EQ(simulation_.Operate(Operation::Start, "board"), OAM_SUCCESS);
    EXPECT_EQ(Status("Board", 0), 2);
    EXPECT_EQ(Status("Board", 1), 350);
    EXPECT_EQ(Status("Board", 2), 3000);
    EXPECT_LT(Status("Board", 3), 60);
    EXPECT_EQ(simulation_.Operate(Operation::Test, "Board"), OAM_SUCCESS);
    EXPECT_EQ(simulation_.Operate(Operation::Stop, "Board"), OAM_SUCCESS);
    EXPECT_EQ(Status("Board", 0), 0);
    int status = 0;
    EXPECT_EQ(simulation_.GetBoardStatus("Board", 4, &status), OAMERR_NOT_SUPPORTED_WARNING);
    EXPECT_EQ(simulation_.GetBoardStatus("Board", 0, nullptr), OAMERR_GET_BOARD_STATUS_FAIL);
}

TEST_F(SimulationTest, DoesNotStartABoardThatIsNotThereOrIsAnother) {
    Create("Nowhere", "SIM-E1", 9);
    EXPECT_EQ(simulation_.Operate(Operation::Start, "Nowhere"), SIM_BOARD_NOT_IN_SLOT);
    Create("Wrong", "SIM-E1", 3);
    EXPECT_EQ(simulation_.Operate(Operation::Start, "Wrong"), SIM_WRONG_PRODUCT);
    EXPECT_EQ(simulation_.Operate(Operation::Start, "Unknown"), OAMERR_NOT_FOUND);
    int status = 0;
    EXPECT_EQ(simulation_.GetBoardStatus("Nowhere", 0, &status), SIM_BOARD_NOT_IN_SLOT);
    EXPECT_EQ(simulation_.SendBuffer("Wrong", "dead"), SIM_WRONG_PRODUCT);
}

TEST_F(SimulationTest, NamesTheConfiguredBoardInItsAlerts) {
    Create("Board", "SIM-E1", 2);
    EXPECT_EQ(simulation_.SendBuffer("board", "temperature 900"), OAM_SUCCESS);
    EXPECT_THAT(service_.Alerts(),
                Contains(RaisedAlert{OAMEVN_TEMPERATURE_ALERT, OAM_ERROR, "Board",
                                     "The board's temperature is 90.0 degrees."}));
    EXPECT_EQ(simulation_.SendBuffer("Board", "explode"), OAMERR_SEND_BUFFER_FAIL);
}

TEST_F(SimulationTest, NamesItsOwnObjectForABoardThatNobodyConfigured) {
    home_.WriteChassis("board: Hot\nproduct: SIM-E1\nbus: 4\nslot: 4\ntemperature: 710\n");
    simulation_.DetectBoards();
    EXPECT_TRUE(service_.WaitForAlert({OAMEVN_TEMPERATURE_WARNING, OAM_WARNING, "sim.bpi",
                                       "bus 4 slot 4: The board's temperature is 71.0 degrees."}));
}

TEST_F(SimulationTest, JudgesABoardByItsOwnThresholds) {
    Create("Board", "SIM-E1", 2);
    EXPECT_EQ(Change("Board", "Fan.Warning", "5000"), OAM_SUCCESS);
    EXPECT_EQ(simulation_.SendBuffer("Board", "fan 4000"), OAM_SUCCESS);
    EXPECT_TRUE(service_.WaitForAlert({OAMEVN_FAN_RPM_WARNING, OAM_WARNING, "Board",
                                       "The board's fan turns at 4000 revolutions per minute."}));
}

TEST_F(SimulationTest, KeepsABoardsThresholdsWhenItIsRenamed) {
    Create("Board", "SIM-E1", 2);
    EXPECT_EQ(Change("Board", "Temperature.Warning", "400"), OAM_SUCCESS);
    EXPECT_EQ(Change("Board", "Name", "Renamed"), OAM_SUCCESS);
    Hear(OAMEVN_RENAMED, "Renamed", "Board");
    EXPECT_EQ(simulation_.SendBuffer("Renamed", "temperature 450"), OAM_SUCCESS);
    EXPECT_THAT(service_.Alerts(),
                Contains(RaisedAlert{OAMEVN_TEMPERATURE_WARNING, OAM_WARNING, "Renamed",
                                     "The board's temperature is 45.0 degrees."}));
}

TEST_F(SimulationTest, StopsStoredBoardsWhileTheServiceGoesDown) {
    Create("Board", "SIM-E1", 2);
    simulation_.End();
    Simulation next("sim.bpi");
    ASSERT_EQ(next.Begin(), OAM_SUCCESS);
    service_.StopAnsweringTable();
    EXPECT_EQ(next.Operate(Operation::Stop, "Board"), OAM_SUCCESS);
    EXPECT_EQ(next.Operate(Operation::Stop, "Unknown"), OAMERR_NOT_FOUND);
    next.End();
}

TEST_F(SimulationTest, ForgetsABoardThatIsDeleted) {
    Create("Board", "SIM-E1", 2);
    Hear(OAMEVN_DELETED, "Board", "");
    service_.StopAnsweringTable();
    EXPECT_EQ(simulation_.Operate(Operation::Stop, "Board"), OAMERR_NOT_FOUND);
}

TEST_F(SimulationTest, StopsABoardWhoseConfigurationIsDestroyed) {
    Create("Board", "SIM-E1", 2);
    EXPECT_EQ(simulation_.Operate(Operation::Start, "Board"), OAM_SUCCESS);
    EXPECT_EQ(simulation_.DestroyBoard("Board"), OAM_SUCCESS);
    service_.RemoveObject("Board");
    EXPECT_EQ(simulation_.DestroyBoard("Board"), OAM_SUCCESS);
    Create("Again", "SIM-E1", 2);
    EXPECT_EQ(Status("Again", 0), 0);
}

TEST_F(SimulationTest, EndsAnOperationAtOnceWhenItsBoardIsDestroyed) {
    Create("Board", "SIM-IP", 3);
    auto start = std::async(std::launch::async,
                            [&] { return simulation_.Operate(Operation::Start, "Board"); });
    ASSERT_TRUE(becomesTrue([&] { return Status("Board", 0) == 1; }));
    EXPECT_EQ(simulation_.DestroyBoard("Board"), OAM_SUCCESS);
    EXPECT_EQ(start.get(), SIM_BOARD_NOT_IN_SLOT);
}

TEST_F(SimulationTest, EndsAllOperationsAtOnceAtItsEnd) {
    Create("Board", "SIM-IP", 3);
    auto start = std::async(std::launch::async,
                            [&] { return simulation_.Operate(Operation::Start, "Board"); });
    ASSERT_TRUE(becomesTrue([&] { return Status("Board", 0) == 1; }));
    simulation_.End();
    EXPECT_EQ(start.get(), SIM_ENDING);
    EXPECT_EQ(simulation_.Operate(Operation::Start, "Board"), SIM_ENDING);
}

TEST_F(SimulationTest, HoldsNoLockWhileAnAlertIsDelivered) {
    Create("Board", "SIM-E1", 2);
    std::promise<void> delivered;
    service_.OnAlert([&](const oam_msg_tag* message) {
        if (message->code != OAMEVN_BOARD_DEAD) return;
        // Another thread, so that a lock held here would keep it waiting.
        std::async(std::launch::async, [&] {
            simulation_.ReceiveAlert(message);
            simulation_.DetectBoards();
            EXPECT_EQ(Status("Board", 0), 5);
            const auto handle = Open("sim.bpi", OAM_OPEN_WRITE);
            EXPECT_EQ(Get(handle, "DetectedBoards.Count"), "2");
            Close(handle);
        }).wait();
        delivered.set_value();
    });
    EXPECT_EQ(simulation_.SendBuffer("Board", "dead"), OAM_SUCCESS);
    EXPECT_EQ(delivered.get_future().wait_for(kLimit), std::future_status::ready);
    service_.OnAlert({});
}

TEST_F(SimulationTest, ServesManyThreadsAtOnce) {
    Create("Board", "SIM-E1", 2);
    std::vector<std::future<void>> threads;
    for (int i = 0; i < 4; ++i) {
        threads.push_back(std::async(std::launch::async, [&, i] {
            for (int round = 0; round < 50; ++round) {
                const auto result = simulation_.Operate(Operation{std::size_t(i) % 3}, "Board");
                EXPECT_TRUE(result == OAM_SUCCESS || result == SIM_BOARD_BUSY ||
                            result == SIM_BOARD_NOT_IN_SLOT || result == SIM_BOARD_DEAD)
                    << result;
                (void)simulation_.SendBuffer("Board", i % 2 == 0 ? "remove" : "insert");
                if (i == 3) simulation_.DetectBoards();
                int status = 0;
                (void)simulation_.GetBoardStatus("Board", 0, &status);
            }
        }));
    }
    for (auto& thread : threads) thread.get();
    EXPECT_EQ(simulation_.SendBuffer("Board", "insert"), OAM_SUCCESS);
    EXPECT_EQ(simulation_.Operate(Operation::Start, "Board"), OAM_SUCCESS);
}

}  // namespace
}  // namespace oam::sim
