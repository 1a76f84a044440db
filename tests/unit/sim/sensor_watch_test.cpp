#include "sensor_watch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace oam::sim {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr Thresholds kThresholds = {
    .temperatureWarning = 700, .temperatureAlert = 850, .fanWarning = 1500};
constexpr Location kSlot = {1, 2};

class SensorWatchTest : public ::testing::Test {
  protected:
    std::vector<oam_result> Codes(int temperature, int fan = 3000) {
        std::vector<oam_result> codes;
        for (const auto& event : watch_.Look(kSlot, {temperature, fan}, kThresholds)) {
            EXPECT_EQ(event.location, kSlot);
            codes.push_back(event.code);
        }
        return codes;
    }

    SensorWatch watch_;
};

TEST_F(SensorWatchTest, TellsAThresholdOnceUntilTheReadingHasComeBack) {
    EXPECT_THAT(Codes(699), IsEmpty());
    EXPECT_THAT(Codes(700), ElementsAre(OAMEVN_TEMPERATURE_WARNING));
    EXPECT_THAT(Codes(849), IsEmpty());
    EXPECT_THAT(Codes(699), IsEmpty());
    EXPECT_THAT(Codes(701), ElementsAre(OAMEVN_TEMPERATURE_WARNING));
}

TEST_F(SensorWatchTest, TellsOnlyTheAlertWhenBothThresholdsArePassedAtOnce) {
    EXPECT_THAT(Codes(850), ElementsAre(OAMEVN_TEMPERATURE_ALERT));
    EXPECT_THAT(Codes(800), IsEmpty());
    EXPECT_THAT(Codes(850), ElementsAre(OAMEVN_TEMPERATURE_ALERT));
}

TEST_F(SensorWatchTest, TellsAFanBelowItsLowestSpeed) {
    EXPECT_THAT(Codes(350, 1500), IsEmpty());
    EXPECT_THAT(Codes(350, 1499), ElementsAre(OAMEVN_FAN_RPM_WARNING));
    EXPECT_THAT(Codes(350, 0), IsEmpty());
    EXPECT_THAT(Codes(350, 1500), IsEmpty());
    EXPECT_THAT(Codes(350, 10), ElementsAre(OAMEVN_FAN_RPM_WARNING));
}

TEST_F(SensorWatchTest, TellsTheReadingAndItsSeverity) {
    const auto events = watch_.Look(kSlot, {-5, 900}, {-10, 850, 1500});
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].text, "The board's temperature is -0.5 degrees.");
    EXPECT_EQ(events[0].severity, unsigned{OAM_WARNING});
    EXPECT_EQ(events[1].text, "The board's fan turns at 900 revolutions per minute.");
    EXPECT_EQ(events[1].severity, unsigned{OAM_WARNING});
    EXPECT_EQ(watch_.Look(kSlot, {900, 900}, kThresholds).at(0).severity, unsigned{OAM_ERROR});
}

}  // namespace
}  // namespace oam::sim
