#include "board_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sim_codes.h"

namespace oam::sim {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr Thresholds kThresholds = {
    .temperatureWarning = 700, .temperatureAlert = 850, .fanWarning = 1500};

class BoardCommandTest : public ::testing::Test {
  protected:
    oam_result Run(std::string_view text) {
        events_.clear();
        return runCommand(text, &board_, &events_);
    }
    BoardStatus Status() {
        BoardStatus status;
        EXPECT_EQ(board_.Read(&status), OAM_SUCCESS);
        return status;
    }

    SimulatedBoard board_{BoardPlan(), kThresholds};
    std::vector<BoardEvent> events_;
};

TEST_F(BoardCommandTest, SetsReadingsAndTellsWhatTheyCause) {
    EXPECT_EQ(Run("temperature 850"), OAM_SUCCESS);
    ASSERT_THAT(events_, SizeIs(1));
    EXPECT_EQ(events_[0].code, OAMEVN_TEMPERATURE_ALERT);
    EXPECT_EQ(Run("FAN  900\n"), OAM_SUCCESS);
    ASSERT_THAT(events_, SizeIs(1));
    EXPECT_EQ(events_[0].code, OAMEVN_FAN_RPM_WARNING);
    EXPECT_EQ(Status().readings.temperature, 850);
    EXPECT_EQ(Status().readings.fan, 900);
}

TEST_F(BoardCommandTest, MakesTheNextOperationsFail) {
    EXPECT_EQ(Run(std::string_view("fail start 2\0", 13)), OAM_SUCCESS);
    EXPECT_EQ(Run("fail test"), OAM_SUCCESS);
    EXPECT_EQ(board_.Run(Operation::Start, {}), OAMERR_START_BOARD_FAIL);
    EXPECT_EQ(board_.Run(Operation::Start, {}), OAMERR_START_BOARD_FAIL);
    EXPECT_EQ(board_.Run(Operation::Start, {}), OAM_SUCCESS);
    EXPECT_EQ(board_.Run(Operation::Test, {}), OAMERR_BOARD_SELFTEST_FAIL);
    EXPECT_EQ(board_.Run(Operation::Test, {}), OAM_SUCCESS);
}

TEST_F(BoardCommandTest, KillsRemovesAndInserts) {
    EXPECT_EQ(Run("dead"), OAM_SUCCESS);
    EXPECT_THAT(events_, SizeIs(1));
    EXPECT_EQ(board_.Run(Operation::Start, {}), SIM_BOARD_DEAD);
    EXPECT_EQ(Run("remove"), OAM_SUCCESS);
    EXPECT_THAT(events_, IsEmpty());
    EXPECT_EQ(Run("temperature 400"), SIM_BOARD_NOT_IN_SLOT);
    EXPECT_EQ(Run("remove"), SIM_BOARD_NOT_IN_SLOT);
    EXPECT_EQ(Run("insert"), OAM_SUCCESS);
    EXPECT_EQ(board_.Run(Operation::Start, {}), OAM_SUCCESS);
}

TEST_F(BoardCommandTest, RefusesEverythingElseWithoutAnEffect) {
    for (const auto* text :
         {"", " ", "\n", "reboot", "temperature", "temperature hot", "temperature 2001",
          "temperature -1001", "fan -1", "fan 100001", "fail", "fail now", "fail start x",
          "fail start -1", "fail start 1001", "dead now", "remove it", "insert again"}) {
        EXPECT_EQ(Run(text), OAMERR_SEND_BUFFER_FAIL) << text;
        EXPECT_THAT(events_, IsEmpty()) << text;
    }
    EXPECT_EQ(Run(std::string(100000, 'x')), OAMERR_SEND_BUFFER_FAIL);
    EXPECT_EQ(board_.Run(Operation::Start, {}), OAM_SUCCESS);
}

}  // namespace
}  // namespace oam::sim
