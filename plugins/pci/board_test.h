// Testing a device without its driver's help: does it answer as what it is, and has it a link?
#pragma once

#include "oam/codes.h"
#include "pci_location.h"
#include "sysfs_tree.h"

namespace oam::pci {

// What the value of a test request selects; 0 is all of them.
enum BoardTest : unsigned int { kTestConfiguration = 1, kTestLink = 2, kAllTests = 3 };

// PCI_NO_ANSWER, PCI_OTHER_DEVICE
oam_result testConfiguration(const SysfsTree& tree, const PciAddress& address);

// PCI_NO_LINK. A device without interfaces passes, and so does an interface that is switched off:
// nobody expects a link there.
oam_result testLink(const SysfsTree& tree, const PciAddress& address);

}  // namespace oam::pci
