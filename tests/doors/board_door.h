// Stand-in for doors/board.h and for the board entry points that other rooms use.
//
// The lists are called "Plugins", "Products" and "Boards"; detected boards are given as rows. A
// board query answers success or what the test scripts, with these numbers and texts:
// "_oamBoardGetNumber" the number below, "_oamBoardLookupByBusSlot" its text.
#pragma once

#include <string>
#include <vector>

namespace oam::test {

struct DetectedRow {
    std::string name;
    std::string product;
    std::string bus;
    std::string slot;
};

struct BoardDoor {
    static BoardDoor& The();
    void Reset() { *this = BoardDoor(); }

    std::vector<DetectedRow> detected;
    unsigned number = 0;
};

}  // namespace oam::test
