// One use of the host's PCI library on one kernel tree: identity, configuration space and
// capabilities of a device. Nothing is ever written to a device.
//
// The library ends the process when it meets something that it holds for impossible, such as a
// device without a vendor file. Here that is only a device that cannot be read. An object serves
// one thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "pci_location.h"

struct pci_access;
struct pci_dev;

namespace oam::pci {

struct DeviceIdentity {
    std::uint16_t vendor = 0;
    std::uint16_t device = 0;
    std::uint32_t classCode = 0;  // 24 bits: class, subclass, programming interface
};

class PciLibrary {
  public:
    explicit PciLibrary(const std::string& sysfsRoot);
    ~PciLibrary();
    PciLibrary(const PciLibrary&) = delete;
    PciLibrary& operator=(const PciLibrary&) = delete;

    // What the kernel found when it counted its devices.
    std::optional<DeviceIdentity> Identity(const PciAddress& address);

    // Vendor and device (the class is left out) as the device itself answers now. All ones are what
    // a bus reads when nothing answers.
    std::optional<DeviceIdentity> Answer(const PciAddress& address);

    // The device serial number capability, as "00-11-22-33-44-55-66-77", highest byte first.
    std::optional<std::string> SerialNumber(const PciAddress& address);

  private:
    void Close();
    template <class Work>
    bool WithDevice(const PciAddress& address, Work work);

    pci_access* access_ = nullptr;  // null when the library could not be had
};

}  // namespace oam::pci
