#include "host_scan.h"

#include <algorithm>

#include "kit/text_scan.h"
#include "sysfs_file.h"

namespace oam::pci {
namespace {

constexpr std::size_t kMostDevices = 16384;

std::optional<PciBoard> boardOf(const Settings& settings, PciLibrary& library,
                                const PciLocation& location) {
    PciBoard board = {.location = location, .product = {}, .functions = {}};
    for (unsigned int function = 0; function < kFunctions; ++function) {
        const PciAddress address = {.location = location, .function = function};
        if (!isDirectory(settings.tree.Device(address))) continue;
        const auto identity = library.Identity(address);
        if (!identity) continue;
        const auto product = productOf(settings.matches, *identity);
        if (product.empty()) continue;
        if (board.functions.empty()) board.product = product;
        if (kit::sameText(product, board.product)) board.functions.push_back(address);
    }
    if (board.functions.empty()) return {};
    return board;
}

}  // namespace

std::optional<std::vector<PciBoard>> scanBoards(const Settings& settings) {
    const auto names = listNames(settings.tree.Devices(), kMostDevices);
    if (!names) return {};
    std::vector<PciLocation> locations;
    for (const auto& name : *names) {
        const auto address = PciAddress::Parse(name);
        if (address && address->location.IsPlaced()) locations.push_back(address->location);
    }
    std::ranges::sort(locations);
    locations.erase(std::unique(locations.begin(), locations.end()), locations.end());

    PciLibrary library(settings.tree.root);
    std::vector<PciBoard> boards;
    for (const auto& location : locations) {
        if (auto board = boardOf(settings, library, location)) boards.push_back(std::move(*board));
    }
    return boards;
}

std::optional<PciBoard> boardAt(const Settings& settings, const PciLocation& location) {
    if (!location.IsPlaced()) return {};
    PciLibrary library(settings.tree.root);
    return boardOf(settings, library, location);
}

}  // namespace oam::pci
