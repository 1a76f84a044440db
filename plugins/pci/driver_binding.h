// Which kernel driver holds a device, and making it take or release it.
//
// The kernel takes orders as writes to the files of its tree:
//
//   bus/pci/devices/<address>/driver           link to the driver that holds the device
//   bus/pci/devices/<address>/driver_override  the only driver that may take it; an empty line: any
//   bus/pci/drivers/<driver>/bind, unbind      take or release the device with this address
//   bus/pci/drivers_probe                      let the kernel choose a driver for it
//
// A driver that is asked for by name is put into the override first, because it may not list the
// device among its own; letting go takes the override back.
#pragma once

#include <chrono>
#include <string>

#include "oam/codes.h"
#include "patience.h"
#include "pci_location.h"
#include "sysfs_tree.h"

namespace oam::pci {

class DriverBinding {
  public:
    // How long the driver may take is for each step.
    DriverBinding(const SysfsTree& tree, std::chrono::milliseconds limit, Patience* patience)
        : tree_(tree), limit_(limit), patience_(patience) {}

    // Empty when none holds it.
    std::string HeldBy(const PciAddress& address) const;

    // An empty driver stands for the kernel's choice, and is content with whichever holds it.
    oam_result Bind(const PciAddress& address, const std::string& driver);
    oam_result Release(const PciAddress& address);

  private:
    oam_result Order(const PciAddress& address, const std::string& driver);
    void SetOverride(const PciAddress& address, const std::string& driver);

    const SysfsTree& tree_;
    std::chrono::milliseconds limit_;
    Patience* patience_;
};

// A text that can stand for a driver in a path of the tree.
bool canNameDriver(std::string_view name);

}  // namespace oam::pci
