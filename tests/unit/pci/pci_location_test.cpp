#include "pci_location.h"

#include <gtest/gtest.h>

namespace oam::pci {
namespace {

TEST(PciAddress, IsReadAndWrittenAsTheKernelSpellsIt) {
    const auto address = PciAddress::Parse("0000:3a:1f.7");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->location, (PciLocation{.bus = 0x3a, .slot = 0x1f}));
    EXPECT_EQ(address->function, 7u);
    EXPECT_EQ(address->Text(), "0000:3a:1f.7");
}

TEST(PciAddress, CarriesTheDomainAboveTheBus) {
    const auto address = PciAddress::Parse("10001:02:03.4");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->location.bus, 0x1000102u);
    EXPECT_EQ(address->Domain(), 0x10001u);
    EXPECT_EQ(address->Bus(), 2u);
    EXPECT_EQ(address->Text(), "10001:02:03.4");
}

TEST(PciAddress, IsNoOtherText) {
    for (const char* text :
         {"", ".", "0000:03:00", "0000:03:00.", "0000:03:00.8", "0000:03:20.0", "0000:3:00.0",
          "0000:03:00.0 ", " 0000:03:00.0", "0000:03:00.0.0", "00000:03:00.0", "100000:00:01.0",
          "0000:0A:00.0", "-000:03:00.0", "0000:03:00.00", "usb1", "0000.03.00:0",
          "ffffffffffffffffffff:00:00.0"}) {
        EXPECT_FALSE(PciAddress::Parse(text)) << text;
    }
}

TEST(PciLocation, NamesABoardByBusAndSlot) {
    EXPECT_EQ((PciLocation{.bus = 3, .slot = 10}).BoardName(), "PCI 03:0a");
    EXPECT_EQ((PciLocation{.bus = 0x1FF, .slot = 0}).BoardName(), "PCI 0001:ff:00");
}

TEST(PciLocation, IsNoPlaceForABoardAtTheHostsBridge) {
    EXPECT_FALSE(PciLocation{}.IsPlaced());
    EXPECT_TRUE((PciLocation{.bus = 0, .slot = 1}).IsPlaced());
    EXPECT_TRUE((PciLocation{.bus = 1, .slot = 0}).IsPlaced());
}

}  // namespace
}  // namespace oam::pci
