// Where the kernel's tree keeps what belongs to a PCI device; `root` is "/sys" on a real host.
#pragma once

#include <string>

#include "pci_location.h"

namespace oam::pci {

struct SysfsTree {
    std::string root;

    std::string PciBus() const { return root + "/bus/pci"; }
    std::string Devices() const { return PciBus() + "/devices"; }
    std::string Device(const PciAddress& address) const { return Devices() + "/" + address.Text(); }
    std::string Driver(const std::string& name) const { return PciBus() + "/drivers/" + name; }
};

}  // namespace oam::pci
