// The agent's life: what it knows of the host all the time, and one session with the fleet after
// another. A session is one link to a server of the engine and the threads that work through it; it
// ends with the link, and the next one begins anew.
//
// The host does not need the fleet, nor the fleet the agent: while there is no server the daemon
// works on and keeps its alerts, and the next session catches up.
#pragma once

#include <memory>
#include <stop_token>
#include <string>

#include "fleet/agent/settings.h"

namespace oam::fleet {

class Agent {
  public:
    explicit Agent(AgentSettings settings);
    ~Agent();
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

    // Until `end` is requested. False when requests from the fleet are still at work in the daemon;
    // then the agent must not be destroyed.
    bool Run(const std::stop_token& end);

    // For the metrics.
    std::string Metrics() const;

  private:
    class Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace oam::fleet
