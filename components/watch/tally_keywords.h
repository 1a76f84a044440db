// The counts of one board as keywords: "Boards[i].Starts.Succeeded" and so on.
#pragma once

#include "board_tallies.h"
#include "kit/computed_array.h"

namespace oam::watch {

const kit::ComputedArray<BoardTally>& tallyKeywords();

}  // namespace oam::watch
