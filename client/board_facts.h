// What the board table tells of a board, without opening its object.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace oam {

// A pair of numbers that name a place: bus and slot, shelf and slot.
struct BoardPlace {
    unsigned first = 0;
    unsigned slot = 0;

    // "3:14"
    std::string Text() const;
};

struct BoardFacts {
    std::string name;
    unsigned number = 0;
    std::string product;
    std::string driverName;
    std::string driverBoardId;
    BoardPlace busSlot;
    std::optional<BoardPlace> shelfSlot;  // nothing: not in a CompactPCI shelf
    unsigned ioAddress = 0;
    std::string serialNumber;
    std::vector<std::string> macAddresses;
    // Whether it will be: the board's own mark and the service's setting.
    bool autoStart = false;
    bool autoStop = false;
};

// In name order.
std::vector<std::string> BoardNames();

// Nothing when there is no such board.
std::optional<BoardFacts> ReadBoardFacts(const std::string& name);

// All of them, in name order.
std::vector<BoardFacts> ReadBoards();

// Whether the end of the service stops it.
bool IsStoppedAtExit(const std::string& board);

// The name as the board table spells it. A name that it does not know is a Failure.
std::string RequireBoard(const std::string& name);

}  // namespace oam
