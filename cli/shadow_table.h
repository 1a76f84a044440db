// The board shadow as the tool shows it: the table that a service published last, whichever process
// that was and whether it still runs.
#pragma once

#include "table.h"

namespace oam {

struct ShadowTable {
    Table boards;
    bool isUsingVx = false;
};

// A shadow that cannot be read is a Failure.
ShadowTable ReadShadow();

}  // namespace oam
