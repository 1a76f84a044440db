// Something that happened to a board and that an alert tells.
//
// What notices it holds the board's lock, and an alert is raised with no lock held. So events are
// first collected, then raised.
#pragma once

#include <string>
#include <vector>

#include "location.h"
#include "oam/codes.h"
#include "oam/message.h"

namespace oam::sim {

struct BoardEvent {
    Location location{};
    oam_result code = OAM_SUCCESS;
    unsigned int severity = OAM_INFORMATION;
    std::string text{};
};

// The source is the board configured for the location, or else the plug-in's own object.
void raiseEvents(const std::vector<BoardEvent>& events, const std::string& plugInObject);

}  // namespace oam::sim
