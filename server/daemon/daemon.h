// The daemon: its parts, made in the order in which they need each other, and its life.
#pragma once

#include "daemon/settings.h"

namespace oam::server {

// Runs until a signal ends it. The process's exit status; what went wrong has been told.
int RunDaemon(const Settings& settings);

}  // namespace oam::server
