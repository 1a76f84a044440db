#include "board_test.h"

#include <algorithm>

#include "network_interfaces.h"
#include "pci_codes.h"
#include "pci_library.h"

namespace oam::pci {
namespace {

// What a bus reads when nothing answers; no vendor has it.
constexpr std::uint16_t kNobody = 0xFFFF;

}  // namespace

oam_result testConfiguration(const SysfsTree& tree, const PciAddress& address) {
    PciLibrary library(tree.root);
    const auto answer = library.Answer(address);
    if (!answer || answer->vendor == kNobody) return PCI_NO_ANSWER;
    const auto found = library.Identity(address);
    if (!found || found->vendor != answer->vendor || found->device != answer->device) {
        return PCI_OTHER_DEVICE;
    }
    return OAM_SUCCESS;
}

oam_result testLink(const SysfsTree& tree, const PciAddress& address) {
    const auto interfaces = networkInterfaces(tree, address);
    const bool isDown = std::ranges::any_of(
        interfaces, [](const NetworkInterface& one) { return one.link == Link::Down; });
    return isDown ? PCI_NO_LINK : OAM_SUCCESS;
}

}  // namespace oam::pci
