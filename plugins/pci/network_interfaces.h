// The network interfaces that a device's driver has made: names, addresses and links.
#pragma once

#include <string>
#include <vector>

#include "pci_location.h"
#include "sysfs_tree.h"

namespace oam::pci {

// The values are what GetBoardStatus answers; 0 there is a board without interfaces.
enum class Link {
    Off = 1,   // the interface is switched off, so nobody knows
    Down = 2,  // no carrier, or one that carries nothing
    Up = 3
};

struct NetworkInterface {
    std::string name;
    std::string macAddress;  // "02:fc:00:00:00:01"; empty when the kernel shows none
    Link link = Link::Off;
};

// Sorted by name. They lie in the device's own directory, or one below it when the device carries
// another bus, as paravirtual ones do.
std::vector<NetworkInterface> networkInterfaces(const SysfsTree& tree, const PciAddress& address);

}  // namespace oam::pci
