#include "settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_service.h"

namespace oam::sim {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class SettingsTest : public ::testing::Test {
  protected:
    SettingsTest() { service_.AddObject("sim.bpi"); }

    Settings Complete() {
        repairs_.clear();
        const auto handle = service_.Open("sim.bpi", OAM_OPEN_WRITE | OAM_OPEN_PROVIDER);
        EXPECT_EQ(completeSettings(handle, "sim.bpi", &repairs_), OAM_SUCCESS);
        auto settings = readSettings(handle);
        service_.Close(handle);
        return settings;
    }
    void Store(const std::string& entry, const std::string& value) {
        service_.Store("sim.bpi", entry, value);
    }

    FakeService service_;
    std::vector<std::string> repairs_;
};

TEST_F(SettingsTest, AreCompleteFromTheFirstStart) {
    const auto settings = Complete();
    EXPECT_THAT(repairs_, IsEmpty());
    EXPECT_EQ(settings.chassisFile, "sim.chassis");
    EXPECT_THAT(settings.products, ElementsAre("SIM-E1", "SIM-IP"));
    EXPECT_EQ(settings.operations[Operation::Start].time, 300ms);
    EXPECT_EQ(settings.operations[Operation::Stop].time, 100ms);
    EXPECT_EQ(settings.operations[Operation::Test].time, 500ms);
    EXPECT_EQ(settings.operations[Operation::Start].result, OAM_SUCCESS);
    EXPECT_EQ(settings.thresholds.temperatureWarning, 700);
    EXPECT_EQ(settings.thresholds.temperatureAlert, 850);
    EXPECT_EQ(settings.thresholds.fanWarning, 1500);
    EXPECT_EQ(service_.Stored("sim.bpi", "Name?ReadOnly"), "Yes");
    EXPECT_EQ(service_.Stored("sim.bpi", "Name"), "sim.bpi");
}

TEST_F(SettingsTest, KeepWhatIsStoredAndGood) {
    Store("Products.Count", "1");
    Store("Products[0]", "Other");
    Store("Timing.StartMs", "0");
    Store("Failure.Test", "4000010e");
    Store("Sensor.Temperature.Warning", "-1000");
    const auto settings = Complete();
    EXPECT_THAT(repairs_, IsEmpty());
    EXPECT_THAT(settings.products, ElementsAre("Other"));
    EXPECT_EQ(settings.operations[Operation::Start].time, 0ms);
    EXPECT_EQ(settings.operations[Operation::Test].result, OAMERR_BOARD_SELFTEST_FAIL);
    EXPECT_EQ(settings.thresholds.temperatureWarning, -1000);
}

TEST_F(SettingsTest, ReplaceWhatIsNoGoodAndTellIt) {
    Store("Timing.StartMs", "soon");
    Store("Chassis.File", "../../etc/passwd");
    const auto settings = Complete();
    EXPECT_THAT(repairs_,
                ElementsAre("\"Chassis.File\" was \"../../etc/passwd\" and is now \"sim.chassis\".",
                            "\"Timing.StartMs\" was \"soon\" and is now \"300\"."));
    EXPECT_EQ(settings.operations[Operation::Start].time, 300ms);
    EXPECT_EQ(settings.chassisFile, "sim.chassis");
    Complete();
    EXPECT_THAT(repairs_, IsEmpty());
}

TEST_F(SettingsTest, NameEveryProductThatIsCounted) {
    Store("Products.Count", "5");
    Store("Products[1]", "SIM-E1");
    Store("Products[3]", "sim-2");
    const auto settings = Complete();
    EXPECT_THAT(repairs_, IsEmpty());
    EXPECT_THAT(settings.products, ElementsAre("SIM-0", "SIM-E1", "SIM-3", "sim-2", "SIM-4"));
}

TEST_F(SettingsTest, ReplaceAProductThatComesTwiceOrIsNoName) {
    Store("Products.Count", "3");
    Store("Products[0]", "A");
    Store("Products[1]", "a");
    Store("Products[2]", "");
    const auto settings = Complete();
    EXPECT_THAT(repairs_, SizeIs(2));
    EXPECT_THAT(settings.products, ElementsAre("SIM-E1", "a", "SIM-2"));
}

TEST_F(SettingsTest, AreNotBoundByQualifiersOfAnotherHand) {
    Store("Products[0]?Choices.Count", "1");
    Store("Products[0]?Choices[0]", "X");
    EXPECT_THAT(Complete().products, ElementsAre("SIM-E1", "SIM-IP"));
    EXPECT_THAT(repairs_, IsEmpty());
}

TEST_F(SettingsTest, GiveALostNameBack) {
    Store("Name", "other.bpi");
    Complete();
    EXPECT_EQ(service_.Stored("sim.bpi", "Name"), "sim.bpi");
    EXPECT_THAT(repairs_, ElementsAre("\"Name\" was \"other.bpi\" and is now \"sim.bpi\"."));
}

TEST_F(SettingsTest, BoundTheNumberOfProducts) {
    Store("Products.Count", "2000000000");
    EXPECT_THAT(Complete().products, SizeIs(2));
    EXPECT_THAT(repairs_, SizeIs(1));
}

TEST_F(SettingsTest, KnowTheirProductsInAnyCase) {
    const auto settings = Complete();
    EXPECT_TRUE(settings.Serves("sim-ip"));
    EXPECT_FALSE(settings.Serves("sim"));
}

}  // namespace
}  // namespace oam::sim
