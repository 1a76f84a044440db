// The service for one command, wherever it runs.
#pragma once

#include <memory>

#include "service.h"

namespace oam {

struct Context;

// A service that cannot be reached or started is a Failure; with kNoDaemon when it takes a daemon.
std::unique_ptr<Service> OpenService(const Context& context, const Interruption& interruption);

// The daemon's, or a Failure that none serves the installation.
std::unique_ptr<Service> OpenDaemon(const Context& context, const Interruption& interruption);

}  // namespace oam
