// What the agent is told: command line first, then the configuration file, then what is usual.
#pragma once

#include <optional>
#include <string>

#include "fleet/link/link_settings.h"

namespace oam::fleet {

struct AgentSettings {
    LinkSettings link;
    std::string directory;   // of the installation; empty: KOR_DIR, else the compiled-in one
    std::string socketPath;  // of the daemon; empty: the installation's
    std::string host;        // the name in the fleet
    std::string metricsAddress;
    unsigned beatMillis = 1000;
    unsigned inventorySeconds = 60;
};

// Nothing when the agent is to end at once, with this status (help, a mistake; both are told).
std::optional<AgentSettings> ReadAgentSettings(int argc, char** argv, int* status);

}  // namespace oam::fleet
