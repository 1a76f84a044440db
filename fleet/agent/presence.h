// The host's heartbeat in the bucket of presence: what the daemon's watch sees, every while.
#pragma once

#include <stop_token>
#include <string>

#include "fleet/agent/agent_figures.h"
#include "fleet/agent/daemon_watch.h"
#include "fleet/link/link.h"

namespace oam::fleet {

class Presence {
  public:
    Presence(const DaemonWatch& watch, std::string host, std::chrono::milliseconds interval,
             AgentFigures& figures);

    // Until the link is lost or `stop` is requested; then, if it can be told, that this is the end.
    void Serve(Link& link, const std::stop_token& stop, const std::stop_token& end);

  private:
    Beat Next();

    const DaemonWatch& watch_;
    const std::string host_;
    const std::chrono::milliseconds interval_;
    AgentFigures& figures_;
    std::uint64_t sequence_ = 0;
};

}  // namespace oam::fleet
