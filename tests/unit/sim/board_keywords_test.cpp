#include "board_keywords.h"

#include <gtest/gtest.h>

#include "fake_service.h"
#include "value_check.h"

namespace oam::sim {
namespace {

constexpr Thresholds kThresholds = {
    .temperatureWarning = 700, .temperatureAlert = 850, .fanWarning = 1500};
constexpr unsigned int kProvider = OAM_OPEN_WRITE | OAM_OPEN_PROVIDER;

class BoardKeywordsTest : public ::testing::Test {
  protected:
    BoardKeywordsTest() { service_.AddObject("Board", "E1"); }

    template <class Body>
    void WithHandle(const Body& body) {
        const auto handle = service_.Open("Board", kProvider);
        body(handle);
        service_.Close(handle);
    }
    void Install() {
        WithHandle([](unsigned long handle) {
            EXPECT_EQ(installBoardKeywords(handle, kThresholds), OAM_SUCCESS);
        });
    }
    std::optional<std::string> Stored(const std::string& entry) {
        return service_.Stored("Board", entry);
    }

    FakeService service_;
};

TEST_F(BoardKeywordsTest, DescribeThemselvesInQualifiers) {
    Install();
    EXPECT_EQ(Stored("Location.PCI.Bus"), "0");
    EXPECT_EQ(Stored("Location.PCI.Bus?Type"), "Integer");
    EXPECT_EQ(Stored("Location.PCI.Bus?Max"), "255");
    EXPECT_EQ(Stored("Location.PCI.Slot?Max"), "31");
    EXPECT_EQ(Stored("Eeprom.SerialNum?ReadOnly"), "Yes");
    EXPECT_EQ(Stored("NetworkInterface.Ethernet.Count?ReadOnly"), "Yes");
    EXPECT_EQ(Stored("Product?ReadOnly"), "Yes");
    EXPECT_EQ(Stored("XLaw?Choices[0]"), "A-LAW");
    EXPECT_EQ(Stored("AutoStart"), "No");
    EXPECT_EQ(Stored("AutoStop?Choices.Count"), "2");
    EXPECT_EQ(Stored("Temperature.Alert"), "850");
    EXPECT_EQ(Stored("Fan.Warning?Max"), "100000");
}

TEST_F(BoardKeywordsTest, LeaveTheNumberToTheService) {
    Install();
    EXPECT_FALSE(Stored("Number"));
    EXPECT_EQ(Stored("Number?Type"), "Integer");
}

TEST_F(BoardKeywordsTest, BeginWithValuesThatTheirOwnRulesAccept) {
    Install();
    WithHandle([&](unsigned long handle) {
        for (const auto* keyword :
             {"Name", "Product", "Location.PCI.Bus", "Location.PCI.Slot", "Location.PCI.IOAddress",
              "Location.CPCI.Shelf", "Location.CPCI.Slot", "Eeprom.SerialNum",
              "NetworkInterface.Ethernet.Count", "Driver.Name", "Driver.BoardId",
              "Clocking.HBus.ClockMode", "XLaw", "AutoStart", "AutoStop", "Temperature.Warning",
              "Temperature.Alert", "Fan.Warning"}) {
            ASSERT_TRUE(Stored(keyword)) << keyword;
            EXPECT_EQ(acceptedValue(handle, keyword, *Stored(keyword)), Stored(keyword)) << keyword;
        }
    });
}

TEST_F(BoardKeywordsTest, TellWhereTheBoardIs) {
    Install();
    service_.Store("Board", "Location.PCI.Bus", "7");
    service_.Store("Board", "Location.PCI.Slot", "32");
    WithHandle([](unsigned long handle) { EXPECT_EQ(readLocation(handle), (Location{7, 0})); });
}

TEST_F(BoardKeywordsTest, TellTheThresholdsThatAreGoodAndTheUsualOnesElse) {
    service_.Store("Board", "Temperature.Warning", "400");
    service_.Store("Board", "Temperature.Alert", "hot");
    WithHandle([](unsigned long handle) {
        const auto thresholds = readThresholds(handle, kThresholds);
        EXPECT_EQ(thresholds.temperatureWarning, 400);
        EXPECT_EQ(thresholds.temperatureAlert, 850);
        EXPECT_EQ(thresholds.fanWarning, 1500);
    });
}

TEST_F(BoardKeywordsTest, FollowTheSlotWithAsManyAddressesAsItHas) {
    Install();
    BoardPlan plan;
    plan.serial = "S1";
    plan.macAddresses = {"02:00:53:00:00:01", "02:00:53:00:00:02"};
    WithHandle([&](unsigned long handle) { EXPECT_EQ(followSlot(handle, &plan), OAM_SUCCESS); });
    EXPECT_EQ(Stored("Eeprom.SerialNum"), "S1");
    EXPECT_EQ(Stored("NetworkInterface.Ethernet.Count"), "2");
    EXPECT_EQ(Stored("NetworkInterface.Ethernet[1].MAC_Address"), "02:00:53:00:00:02");
    EXPECT_EQ(Stored("NetworkInterface.Ethernet[1].MAC_Address?ReadOnly"), "Yes");

    plan.macAddresses = {"02:00:53:00:00:03"};
    WithHandle([&](unsigned long handle) { EXPECT_EQ(followSlot(handle, &plan), OAM_SUCCESS); });
    EXPECT_EQ(Stored("NetworkInterface.Ethernet.Count"), "1");
    EXPECT_EQ(Stored("NetworkInterface.Ethernet[0].MAC_Address"), "02:00:53:00:00:03");
    EXPECT_FALSE(Stored("NetworkInterface.Ethernet[1].MAC_Address"));
    EXPECT_FALSE(Stored("NetworkInterface.Ethernet[1].MAC_Address?ReadOnly"));
}

TEST_F(BoardKeywordsTest, ShowNothingForAPlaceWithoutASlot) {
    Install();
    BoardPlan plan;
    plan.serial = "S1";
    plan.macAddresses = {"02:00:53:00:00:01"};
    WithHandle([&](unsigned long handle) { EXPECT_EQ(followSlot(handle, &plan), OAM_SUCCESS); });
    WithHandle([](unsigned long handle) { EXPECT_EQ(followSlot(handle, nullptr), OAM_SUCCESS); });
    EXPECT_EQ(Stored("Eeprom.SerialNum"), "");
    EXPECT_EQ(Stored("NetworkInterface.Ethernet.Count"), "0");
}

}  // namespace
}  // namespace oam::sim
