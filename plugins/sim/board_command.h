// What a trainer can send to a board with SendBuffer: one command in plain text.
//
//   temperature N          the sensor reads N tenths of a degree until the next start
//   fan N                  the fan turns at N revolutions per minute until the next start
//   fail OPERATION [N]     the next N (1) starts, stops or tests fail
//   dead                   the board answers nothing any more, until it is inserted again
//   remove                 the board is pulled out of its slot
//   insert                 it is put back, stopped and sound
//
// The text may end with a NUL or a line feed.
#pragma once

#include <string_view>
#include <vector>

#include "oam/codes.h"
#include "simulated_board.h"

namespace oam::sim {

// OAMERR_SEND_BUFFER_FAIL for anything else; the board is unchanged then. *events receives
// what the command caused. A pulled board takes "insert" and answers SIM_BOARD_NOT_IN_SLOT to the
// rest.
oam_result runCommand(std::string_view text, SimulatedBoard* board,
                      std::vector<BoardEvent>* events);

}  // namespace oam::sim
