// The service in the daemon.
#pragma once

#include <memory>
#include <string>

#include "service.h"

namespace oam {

class Console;
struct RemoteHost;

// At this connected descriptor, which it takes over. Nothing when nobody speaks the protocol there.
std::unique_ptr<Service> ConnectRemoteService(int descriptor, Console& console,
                                              const Interruption& interruption);

// Of a host that is reached over TCP; a Failure when it is not.
std::unique_ptr<Service> ConnectRemoteHost(const RemoteHost& host, Console& console,
                                           const Interruption& interruption);

}  // namespace oam
