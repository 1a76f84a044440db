// Which boards there are: creating, adding and deleting them.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace oam {

// Also those that no plug-in serves now, which the board table does not know.
std::vector<std::string> BoardObjects();

// The name that the service gave it. A refusal is a Failure.
std::string CreateBoard(const std::string& product);

struct BoardSetChange {
    std::vector<std::string> boards;  // what came or went, in name order
    unsigned code;                    // of a request that was refused, in part or as a whole
};

// One board, or (nothing) every one.
BoardSetChange DeleteBoards(const std::optional<std::string>& name);

// One of the boards that the last detection found, or (nothing) all of them.
BoardSetChange AddDetectedBoards(const std::optional<std::string>& name);

}  // namespace oam
