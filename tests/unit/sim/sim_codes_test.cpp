#include "sim_codes.h"

#include <gtest/gtest.h>

namespace oam::sim {
namespace {

TEST(SimCodes, HaveTheirNamesAsTexts) {
    EXPECT_EQ(SIM_BOARD_NOT_IN_SLOT, 0x50000001u);
    EXPECT_STREQ(codeName(0x50000001), "SIM_BOARD_NOT_IN_SLOT");
    EXPECT_STREQ(codeName(SIM_ENDING), "SIM_ENDING");
}

TEST(SimCodes, LeaveForeignCodesToOthers) {
    EXPECT_EQ(codeName(0), nullptr);
    EXPECT_EQ(codeName(OAMERR_NOT_FOUND), nullptr);
    EXPECT_EQ(codeName(0x50000000), nullptr);
    EXPECT_EQ(codeName(0xFFFFFFFF), nullptr);
}

}  // namespace
}  // namespace oam::sim
