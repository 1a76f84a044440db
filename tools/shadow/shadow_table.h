// What the shadow holds, as values.
#pragma once

#include <string>
#include <vector>

namespace oam::shadow {

struct Board {
    std::string name;
    unsigned number = 0;
    std::string driverName;
    std::string driverBoardId;
    bool isALaw = false;

    bool operator==(const Board&) const = default;
};

struct Table {
    std::vector<Board> boards;  // in the shadow's order, which is by name
    bool isUsingVxPlugin = false;

    bool operator==(const Table&) const = default;
};

}  // namespace oam::shadow
