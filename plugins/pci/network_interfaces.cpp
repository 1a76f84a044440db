#include "network_interfaces.h"

#include <algorithm>
#include <string_view>

#include "kit/text_scan.h"
#include "sysfs_file.h"

namespace oam::pci {
namespace {

constexpr std::size_t kMostEntries = 1024;
constexpr std::size_t kMostInterfaces = 64;
constexpr std::string_view kNoAddress = "00:00:00:00:00:00";

bool isMacAddress(std::string_view text) {
    if (text.size() != kNoAddress.size() || text == kNoAddress) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isGood = kNoAddress[i] == ':' ? text[i] == ':' : kit::isHexDigit(text[i]);
        if (!isGood) return false;
    }
    return true;
}

// The kernel answers "carrier" only while the interface is switched on.
Link linkOf(const std::string& interfacePath) {
    const auto carrier = readAttribute(interfacePath + "/carrier");
    const auto state = readAttribute(interfacePath + "/operstate").value_or("unknown");
    if (!carrier) return state == "up" ? Link::Up : Link::Off;
    const bool carries = state == "up" || state == "unknown";
    return *carrier == "1" && carries ? Link::Up : Link::Down;
}

void addInterfaces(const std::string& directory, std::vector<NetworkInterface>* interfaces) {
    const auto names = listNames(directory, kMostInterfaces);
    if (!names) return;
    for (const auto& name : *names) {
        if (interfaces->size() >= kMostInterfaces) return;
        const auto path = directory + "/" + name;
        if (!isDirectory(path)) continue;
        auto address = kit::lowerCase(readAttribute(path + "/address").value_or(""));
        if (!isMacAddress(address)) address.clear();
        interfaces->push_back({.name = name, .macAddress = address, .link = linkOf(path)});
    }
}

}  // namespace

std::vector<NetworkInterface> networkInterfaces(const SysfsTree& tree, const PciAddress& address) {
    const auto device = tree.Device(address);
    std::vector<NetworkInterface> interfaces;
    addInterfaces(device + "/net", &interfaces);
    for (const auto& child : listNames(device, kMostEntries).value_or(std::vector<std::string>())) {
        // A link leads out of the device: to its driver, its bus, its parent.
        const auto path = device + "/" + child;
        if (linkedName(path).empty()) addInterfaces(path + "/net", &interfaces);
    }
    std::ranges::sort(interfaces, {}, &NetworkInterface::name);
    return interfaces;
}

}  // namespace oam::pci
