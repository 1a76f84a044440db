#include "chassis_source.h"

#include <gtest/gtest.h>

#include "builtin_chassis.h"
#include "chassis_file.h"
#include "installation_directory.h"

namespace oam::sim {
namespace {

class ChassisSourceTest : public ::testing::Test {
  protected:
    InstallationDirectory home_;
};

TEST_F(ChassisSourceTest, IsTheFileWithAllItsBytes) {
    const std::string bytes("board: A\r\n\0\xff", 12);
    home_.WriteChassis(bytes);
    EXPECT_EQ(chassisText("sim.chassis"), bytes);
}

TEST_F(ChassisSourceTest, IsTheBuiltInChassisWithoutAFile) {
    EXPECT_EQ(chassisText("other.chassis"), builtInChassis());
}

TEST_F(ChassisSourceTest, IsEmptyForAnEmptyFile) {
    home_.WriteChassis("");
    EXPECT_EQ(chassisText("sim.chassis"), "");
}

TEST_F(ChassisSourceTest, IsNothingForWhatIsNoFile) {
    std::filesystem::create_directory(home_.Configuration() / "sim.chassis");
    EXPECT_FALSE(chassisText("sim.chassis"));
}

TEST_F(ChassisSourceTest, IsCutBehindTheLongestFile) {
    home_.WriteChassis("x");
    std::filesystem::resize_file(home_.Configuration() / "sim.chassis", kLongestFile + 100);
    EXPECT_EQ(chassisText("sim.chassis")->size(), kLongestFile + 1);
}

TEST_F(ChassisSourceTest, IsLookedForInTheDefaultDirectoryWhenNoOtherIsNamed) {
    home_.WriteChassis("x");
    setenv("KOR_DIR", "tmp", 1);
    EXPECT_EQ(chassisText("sim.chassis"), builtInChassis());
}

}  // namespace
}  // namespace oam::sim
