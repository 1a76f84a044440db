// The options that tell where the servers are and who one is, of the agent and of the tool alike.
#pragma once

#include "fleet/link/link_settings.h"

namespace CLI {
class App;
}

namespace oam::fleet {

void AddLinkOptions(CLI::App& app, LinkSettings* settings);

}  // namespace oam::fleet
