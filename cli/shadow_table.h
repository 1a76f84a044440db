// The board shadow as the tool shows it: the table that a service published last, whichever process
// that was and whether it still runs.
#pragma once

#include <string>
#include <vector>

#include "table.h"

namespace oam {

struct ShadowBoard {
    unsigned number = 0;
    std::string name;
    std::string driverName;
    std::string driverBoardId;
    bool isALaw = false;
};

struct ShadowTable {
    std::vector<ShadowBoard> boards;
    bool isUsingVx = false;

    Table Boards() const;
};

// A shadow that cannot be read is a Failure.
ShadowTable ReadShadow();

}  // namespace oam
