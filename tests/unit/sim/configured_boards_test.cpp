#include "configured_boards.h"

#include <gtest/gtest.h>

#include "fake_service.h"

namespace oam::sim {
namespace {

class ConfiguredBoardsTest : public ::testing::Test {
  protected:
    ConfiguredBoardsTest() {
        service_.AddObject("Left", "E1");
        service_.Store("Left", "Location.PCI.Bus", "1");
        service_.Store("Left", "Location.PCI.Slot", "2");
    }

    FakeService service_;
    ConfiguredBoards boards_;
    ConfiguredBoard found_;
};

TEST_F(ConfiguredBoardsTest, AreWhereTheTableSays) {
    boards_.Remember("Left",
                     {.product = "IP", .location = {7, 7}, .thresholds = Thresholds{1, 2, 3}});
    ASSERT_EQ(boards_.Find("LEFT", &found_), OAM_SUCCESS);
    EXPECT_EQ(found_.product, "E1");
    EXPECT_EQ(found_.location, (Location{1, 2}));
    ASSERT_TRUE(found_.thresholds);
    EXPECT_EQ(found_.thresholds->fanWarning, 3);
}

TEST_F(ConfiguredBoardsTest, AreWhereTheyWereLastWhenTheTableDoesNotAnswer) {
    ASSERT_EQ(boards_.Find("Left", &found_), OAM_SUCCESS);
    service_.StopAnsweringTable();
    found_ = {};
    ASSERT_EQ(boards_.Find("left", &found_), OAM_SUCCESS);
    EXPECT_EQ(found_.location, (Location{1, 2}));
    EXPECT_EQ(boards_.Find("Right", &found_), OAMERR_NOT_FOUND);
}

TEST_F(ConfiguredBoardsTest, AreUnknownWhenTheTableDoesNotKnowThem) {
    boards_.Remember("Right", {.product = "E1", .location = {1, 3}, .thresholds = {}});
    EXPECT_EQ(boards_.Find("Right", &found_), OAMERR_NOT_FOUND);
}

TEST_F(ConfiguredBoardsTest, KeepTheirThresholdsUnderANewName) {
    boards_.Remember("Left",
                     {.product = "E1", .location = {1, 2}, .thresholds = Thresholds{1, 2, 3}});
    boards_.Rename("LEFT", "Right");
    boards_.Rename("Nobody", "Left");
    service_.StopAnsweringTable();
    EXPECT_EQ(boards_.Find("Left", &found_), OAMERR_NOT_FOUND);
    ASSERT_EQ(boards_.Find("Right", &found_), OAM_SUCCESS);
    EXPECT_EQ(found_.thresholds->temperatureAlert, 2);
    boards_.Rename("Right", "RIGHT");
    EXPECT_EQ(boards_.Find("Right", &found_), OAM_SUCCESS);
}

TEST_F(ConfiguredBoardsTest, CanBeForgotten) {
    boards_.Remember("Left", {.product = "E1", .location = {1, 2}, .thresholds = {}});
    boards_.Forget("LEFT");
    boards_.Forget("Nobody");
    service_.StopAnsweringTable();
    EXPECT_EQ(boards_.Find("Left", &found_), OAMERR_NOT_FOUND);
}

}  // namespace
}  // namespace oam::sim
