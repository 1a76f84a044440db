// What the service knows of a configured board, for an operation that has only its name.
#pragma once

#include <string>

#include "oam/codes.h"
#include "pci_location.h"

namespace oam::pci {

struct ConfiguredBoard {
    std::string product;
    PciLocation location;
    std::string driver;  // empty: the kernel's choice
};

// From the board table. While boards are stopped at shut-down the table does not answer any more;
// then from the database. May be called with the service's locks held or without any.
oam_result findConfiguredBoard(const std::string& name, ConfiguredBoard* board);

}  // namespace oam::pci
