// The fixture of the tests that need a made-up tree and nothing of the service.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "pci_host.h"
#include "pci_location.h"
#include "support/installation.h"
#include "sysfs_tree.h"

namespace oam::pci {

constexpr const char* kCard = "0000:03:00.0";

inline PciAddress at(std::string_view address) { return PciAddress::Parse(address).value(); }

class HostTest : public ::testing::Test {
  protected:
    const test::Installation home{test::Layout::kBare};
    const test::PciHost host{home.Path("sys")};
    const SysfsTree tree{host.Root()};
};

}  // namespace oam::pci
