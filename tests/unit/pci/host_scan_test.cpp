#include "host_scan.h"

#include "host_test.h"

namespace oam::pci {
namespace {

using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class HostScan : public HostTest {
  protected:
    std::vector<PciBoard> Boards() const { return scanBoards(settings).value(); }

    Settings settings = {.tree = tree,
                         .bindLimit = {},
                         .matches = {{"*", "*", "0200*", "NIC"}, {"*", "*", "0402*", "TEL"}}};
};

TEST_F(HostScan, FindsWhatTheTableKnows) {
    host.Add({.address = "0001:03:1f.0", .classCode = 0x040200});
    host.Add({.address = kCard});
    host.Add({.address = "0000:02:00.0", .classCode = 0x010000});
    const auto boards = Boards();
    ASSERT_THAT(boards, SizeIs(2));
    EXPECT_EQ(boards[0].location, (PciLocation{.bus = 3, .slot = 0}));
    EXPECT_EQ(boards[0].product, "NIC");
    EXPECT_EQ(boards[1].location, (PciLocation{.bus = 0x103, .slot = 31}));
    EXPECT_EQ(boards[1].product, "TEL");
}

TEST_F(HostScan, TakesTheFunctionsOfASlotForOneBoard) {
    for (const char* address : {"0000:03:00.2", "0000:03:00.0", "0000:03:00.1"}) {
        host.Add({.address = address});
    }
    host.Add({.address = "0000:03:00.3", .classCode = 0x010000});
    host.Add({.address = "0000:03:00.4", .classCode = 0x040200});
    const auto boards = Boards();
    ASSERT_THAT(boards, SizeIs(1));
    EXPECT_EQ(boards[0].product, "NIC");
    EXPECT_THAT(boards[0].functions,
                ElementsAre(at(kCard), at("0000:03:00.1"), at("0000:03:00.2")));
}

TEST_F(HostScan, LeavesOutTheHostsBridge) {
    host.Add({.address = "0000:00:00.0"});
    EXPECT_THAT(Boards(), IsEmpty());
    EXPECT_FALSE(boardAt(settings, {}));
}

TEST_F(HostScan, GoesOnPastWhatIsNoDevice) {
    host.Add({.address = kCard});
    for (const char* junk : {"usb1", "0000:04:00.9", "0000:zz:00.0"}) {
        std::filesystem::create_directories(host.Device(junk));
    }
    host.Write(host.Device("0000:05:00.0"), "a file");
    std::filesystem::create_directories(host.Device("0000:06:00.0"));
    EXPECT_THAT(Boards(), ElementsAre(Field(&PciBoard::functions, ElementsAre(at(kCard)))));
}

TEST_F(HostScan, IsNothingWithoutAList) {
    settings.tree.root = home.Path("missing");
    EXPECT_FALSE(scanBoards(settings));
}

TEST_F(HostScan, LooksAtOneSlotAlone) {
    host.Add({.address = kCard});
    ASSERT_TRUE(boardAt(settings, {.bus = 3, .slot = 0}));
    EXPECT_FALSE(boardAt(settings, {.bus = 3, .slot = 1}));
    EXPECT_FALSE(boardAt(settings, {.bus = kHighestBus, .slot = kHighestSlot}));
}

}  // namespace
}  // namespace oam::pci
