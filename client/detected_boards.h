// What is in the chassis. Detection lives in the process that ran it.
#pragma once

#include <string>
#include <vector>

namespace oam {

struct DetectedBoard {
    std::string name;
    std::string product;
    unsigned bus;
    unsigned slot;
    std::string configuredAs;  // the board that has this name or this place; empty: none
};

// Asks the plug-ins and reads their answer.
std::vector<DetectedBoard> DetectBoards();

// What the last detection of this process found.
std::vector<DetectedBoard> DetectedBoards();

}  // namespace oam
