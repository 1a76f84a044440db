// How the host's daemon is: asked every while with a short limit, on a thread of its own, so that a
// daemon that hangs is told of and holds up nobody.
#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

#include "daemon/daemon_connection.h"
#include "fleet/agent/agent_figures.h"
#include "oam/v1/host.pb.h"

namespace oam::fleet {

class DaemonWatch {
  public:
    // `changed` is called on the watch's thread when the daemon or its service comes or goes.
    DaemonWatch(console::DaemonConnection& daemon, std::chrono::milliseconds interval,
                AgentFigures& figures, std::function<void()> changed);

    struct State {
        Beat::Daemon daemon = Beat::Daemon::kAway;
        std::string since;
    };
    State Now() const;
    // What it told last; nothing when it has never answered.
    std::optional<v1::HostInfo> Info() const;

  private:
    void Work(const std::stop_token& stop);
    // Whether anything is another than before.
    bool Ask();

    console::DaemonConnection& daemon_;
    const std::chrono::milliseconds interval_;
    AgentFigures& figures_;
    const std::function<void()> changed_;
    mutable std::mutex mutex_;
    State state_;
    std::optional<v1::HostInfo> info_;
    std::jthread thread_;  // the last member: it uses the others
};

// The moment, as records tell it.
std::string NowText();

}  // namespace oam::fleet
