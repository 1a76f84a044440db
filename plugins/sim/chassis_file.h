// The chassis file: which simulated boards there are and how they behave.
//
// Lines of "key: value"; blank lines and lines that begin with '#' are skipped, keys are read
// without regard to case. "board" begins a board, the other keys describe it:
//
//   board: NAME              name under which the board is detected; needed, unique
//   product: PRODUCT         needed
//   bus: 0-255, slot: 0-31   needed, unique, not 0 and 0
//   serial: TEXT             serial number
//   mac: xx:xx:xx:xx:xx:xx   one Ethernet address; up to four such lines
//   temperature: CURVE       tenths of a degree (see curve.h)
//   fan: CURVE               revolutions per minute
//   start-time: TIME         how long a start takes; stop-time, test-time likewise
//   start: OUTCOMES          how starts end (see outcome_script.h); stop, test likewise
//
// Any bytes are safe input. A bad line, or a board that lacks something, is a problem and left out;
// the rest is used. When a key comes twice the last one counts.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "board_plan.h"

namespace oam::sim {

inline constexpr std::size_t kMostBoards = 4096;
inline constexpr std::size_t kMostMacAddresses = 4;
inline constexpr std::size_t kLongestLine = 1024;
inline constexpr std::size_t kMostProblems = 32;
inline constexpr std::size_t kLongestFile = 16 * 1024 * 1024;

struct ChassisProblem {
    unsigned int line = 0;  // from 1; 0 for the file as a whole
    std::string what;
};

struct ChassisReading {
    std::vector<BoardPlan> boards;
    std::vector<ChassisProblem> problems;  // the first kMostProblems, and how many more there are
};

ChassisReading parseChassis(std::string_view text);

}  // namespace oam::sim
