// The keywords of a board's object, and what the plug-in takes from them.
#pragma once

#include <string>

#include "board_plan.h"
#include "oam/codes.h"
#include "sensor_watch.h"

namespace oam::sim {

// Adds what is missing. Needs a handle in read-write and provider mode. The service adds what is
// missing of its own afterwards; "Name", "Product" and "Number" get their qualifiers only, because
// it has stored them or is going to.
oam_result installBoardKeywords(unsigned long handle, const Thresholds& thresholds);

// What the object says of the board now; a value that is no good reads as none.
Location readLocation(unsigned long handle);
Thresholds readThresholds(unsigned long handle, const Thresholds& usual);

// Serial number and addresses are read out of the board: they follow the slot. Null for a location
// where the chassis has no slot. Needs a handle in read-write and provider mode.
oam_result followSlot(unsigned long handle, const BoardPlan* plan);

}  // namespace oam::sim
