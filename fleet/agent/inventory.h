// What the host is and which boards it has, in the fleet's buckets: looked at after each alert that
// may have changed it and every while, put when it is another than before.
//
// One key holds all boards of a host. So a reader sees each host at one moment, a board that is
// gone leaves nothing behind, and a look at the whole fleet is one value a host (docs/scale.md has
// the figures).
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stop_token>
#include <string>

#include "fleet/agent/agent_figures.h"
#include "fleet/agent/board_states.h"
#include "fleet/agent/daemon_watch.h"
#include "fleet/agent/say.h"
#include "fleet/link/link.h"

namespace oam::fleet {

// Rings when the inventory may be another one. Any thread.
class InventoryBell {
  public:
    void Ring();
    // True when it rang; false at the time limit or the end.
    bool Wait(const std::stop_token& stop, std::chrono::milliseconds limit);

  private:
    std::mutex mutex_;
    std::condition_variable_any rung_;
    bool isRung_ = false;
};

// The boards as the daemon tells them now; nothing when it does not answer.
std::optional<BoardsRecord> LookAtBoards(console::DaemonConnection& daemon,
                                         const BoardStates& states, const v1::HostInfo& info,
                                         const std::string& host);

class Inventory {
  public:
    struct Parts {
        console::DaemonConnection& daemon;
        const DaemonWatch& watch;
        const BoardStates& states;
        InventoryBell& bell;
        AgentFigures& figures;
        std::function<Position()> position;
        Matter& matter;
        std::string host;
        std::chrono::seconds period;
    };
    explicit Inventory(Parts parts) : parts_(std::move(parts)) {}

    // Until the link is lost or `stop` is requested.
    void Serve(Link& link, const std::stop_token& stop);

  private:
    // With `mayRest` an old position is good enough.
    void Put(Link& link, bool mayRest);
    std::optional<HostRecord> LookAtHost(std::size_t boards) const;

    const Parts parts_;
    std::optional<HostRecord> host_;  // as put through this link
    std::optional<BoardsRecord> boards_;
};

}  // namespace oam::fleet
