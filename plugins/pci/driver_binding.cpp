#include "driver_binding.h"

#include "pci_codes.h"
#include "sysfs_file.h"

namespace oam::pci {
namespace {

constexpr std::size_t kLongestDriver = 64;

}  // namespace

bool canNameDriver(std::string_view name) {
    return !name.empty() && name.size() <= kLongestDriver && name != "." && name != ".." &&
           name.find('/') == std::string_view::npos;
}

std::string DriverBinding::HeldBy(const PciAddress& address) const {
    return linkedName(tree_.Device(address) + "/driver");
}

oam_result DriverBinding::Bind(const PciAddress& address, const std::string& driver) {
    const auto holder = HeldBy(address);
    if (!holder.empty() && (driver.empty() || driver == holder)) return OAM_SUCCESS;
    if (!driver.empty() && !(canNameDriver(driver) && isDirectory(tree_.Driver(driver)))) {
        return PCI_NO_SUCH_DRIVER;
    }
    if (auto failed = Release(address)) return failed;
    SetOverride(address, driver);
    const auto failed = Order(address, driver);
    if (failed) SetOverride(address, "");
    return failed;
}

oam_result DriverBinding::Release(const PciAddress& address) {
    const auto isFree = [&] { return HeldBy(address).empty(); };
    if (isFree()) return OAM_SUCCESS;
    const auto unbind = tree_.Device(address) + "/driver/unbind";
    if (!writeAttribute(unbind, address.Text())) return PCI_UNBIND_REFUSED;
    if (!patience_->Await(limit_, isFree)) return PCI_STILL_BOUND;
    SetOverride(address, "");
    return OAM_SUCCESS;
}

oam_result DriverBinding::Order(const PciAddress& address, const std::string& driver) {
    const auto file =
        driver.empty() ? tree_.PciBus() + "/drivers_probe" : tree_.Driver(driver) + "/bind";
    if (!writeAttribute(file, address.Text())) return PCI_BIND_REFUSED;
    const bool isHeld = patience_->Await(limit_, [&] {
        const auto holder = HeldBy(address);
        return driver.empty() ? !holder.empty() : holder == driver;
    });
    return isHeld ? OAM_SUCCESS : PCI_NOT_BOUND;
}

// Old kernels have no override. Then the order itself tells whether the driver takes the device.
void DriverBinding::SetOverride(const PciAddress& address, const std::string& driver) {
    (void)writeAttribute(tree_.Device(address) + "/driver_override", driver + "\n");
}

}  // namespace oam::pci
