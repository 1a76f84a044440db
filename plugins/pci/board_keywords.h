// The keywords of a board's object, and what the plug-in takes from them.
#pragma once

#include <optional>
#include <string_view>

#include "host_scan.h"
#include "kit/keyword_rule.h"
#include "oam/codes.h"

namespace oam::pci {

// The rule of one of a board's keywords; null for one that is not the plug-in's.
const kit::KeywordRule* boardRule(std::string_view keyword);

// Adds what is missing. Needs a handle in read-write and provider mode. The service adds what is
// missing of its own afterwards.
oam_result installBoardKeywords(unsigned long handle);

PciLocation readLocation(unsigned long handle);

// Serial number and addresses are read out of the hardware: they follow the slot. When the board
// comes to a new slot, the driver that holds it is taken for the one to start it with, unless the
// user has named one. Needs a handle in read-write and provider mode.
oam_result followSlot(unsigned long handle, const SysfsTree& tree,
                      const std::optional<PciBoard>& board);

}  // namespace oam::pci
