#include "kit/alert_record.h"

#include <gtest/gtest.h>

#include <string>

#include "fake_service.h"

namespace oam::sim {
namespace {

TEST(AlertRecord, LaysOutHeaderSourceAndText) {
    const kit::AlertRecord record(OAMEVN_FAN_RPM_WARNING, OAM_WARNING, "Board 1", "slow");
    const auto* const message = record.Message();
    EXPECT_EQ(message->size, 24u + 8u + 5u);
    EXPECT_EQ(message->code, 0x4000200Bu);
    EXPECT_EQ(message->severity, 1u);
    EXPECT_EQ(message->sourceOffset, 24u);
    EXPECT_EQ(message->textOffset, 32u);
    EXPECT_EQ(message->reserved, 0u);
    EXPECT_STREQ(oamMessageSource(message), "Board 1");
    EXPECT_STREQ(oamMessageText(message), "slow");
}

TEST(AlertRecord, HoldsEmptyTexts) {
    const kit::AlertRecord record(OAMEVN_ALERT, OAM_INFORMATION, {}, {});
    EXPECT_EQ(record.Message()->size, 26u);
    EXPECT_STREQ(oamMessageSource(record.Message()), "");
    EXPECT_STREQ(oamMessageText(record.Message()), "");
}

TEST(AlertRecord, CutsLongTextsAndCountsOnlyWhatItHolds) {
    const std::string longText(300, 'x');
    const kit::AlertRecord record(OAMEVN_ALERT, OAM_ERROR, longText, longText);
    EXPECT_EQ(record.Message()->size, 24u + 256u + 256u);
    EXPECT_EQ(oamMessageSource(record.Message()), std::string(255, 'x'));
    EXPECT_EQ(oamMessageText(record.Message()), std::string(255, 'x'));
}

TEST(AlertRecord, EndsATextAtItsFirstNul) {
    const kit::AlertRecord record(OAMEVN_ALERT, OAM_ERROR, "a", std::string_view("b\0c", 3));
    EXPECT_EQ(record.Message()->size, 24u + 2u + 2u);
    EXPECT_STREQ(oamMessageText(record.Message()), "b");
}

TEST(AlertRecord, IsRaisedAsItIs) {
    const FakeService service;
    kit::raiseAlert(OAMEVN_ALERT, OAM_ERROR, "sim.bpi", "100%s");
    EXPECT_EQ(service.Alerts(),
              (std::vector<RaisedAlert>{{OAMEVN_ALERT, OAM_ERROR, "sim.bpi", "100%s"}}));
}

}  // namespace
}  // namespace oam::sim
