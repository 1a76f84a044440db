// The service in the daemon.
#pragma once

#include <memory>
#include <string>

#include "service.h"

namespace oam {

class Console;

// At this connected descriptor, which it takes over. Nothing when nobody speaks the protocol there.
std::unique_ptr<Service> ConnectRemoteService(int descriptor, Console& console,
                                              const Interruption& interruption);

}  // namespace oam
