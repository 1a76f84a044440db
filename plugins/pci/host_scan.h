// What is on the host's PCI bus, as boards.
//
// A board is a slot: all functions there that the match table calls by one product, which is the
// product of the lowest function that the table knows. The other functions are not touched.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "pci_location.h"
#include "settings.h"

namespace oam::pci {

struct PciBoard {
    PciLocation location;
    std::string product;
    std::vector<PciAddress> functions;  // at least one, in ascending order
};

// In ascending order of their locations; nothing when the kernel's list cannot be read.
std::optional<std::vector<PciBoard>> scanBoards(const Settings& settings);

// Nothing when the table knows no function there.
std::optional<PciBoard> boardAt(const Settings& settings, const PciLocation& location);

}  // namespace oam::pci
