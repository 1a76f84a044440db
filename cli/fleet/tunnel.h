// A host's daemon over the fleet, as if it were at the other end of a local socket: every call that
// comes in at the socket becomes a request for the host, and its answers come back. So what the
// tool does with a daemon it does with one of any host, by the same code.
#pragma once

#include <memory>
#include <string>

#include "cli/fleet/host_calls.h"
#include "command.h"

namespace oam::fleet {

class Tunnel : public ServiceSource {
  public:
    // `calls` must outlive it.
    Tunnel(HostCalls& calls, std::string host);
    ~Tunnel() override;

    std::unique_ptr<Service> Open(Console& console, const Interruption& interruption) override;

  private:
    class Server;
    std::unique_ptr<Server> server_;
};

}  // namespace oam::fleet
