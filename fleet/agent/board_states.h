// What state each board is in, as far as its alerts tell: followed from the daemon's ring on a
// thread of its own, whether or not there is a fleet to tell it to.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>

#include "daemon/daemon_connection.h"
#include "fleet/records.h"
#include "oam/v1/alerts.pb.h"
#include "oam/v1/operations.pb.h"

namespace oam::fleet {

struct BoardState {
    std::string name = "idle";
    std::string tone = "idle";
};

// The states that alerts of one board add up to, in their order.
class BoardStory {
  public:
    void Take(const v1::Alert& alert);
    // As it is without what was told before `since` (seconds): a service that was started anew
    // knows of no started boards.
    BoardState State(std::int64_t since) const;

  private:
    struct Told {
        std::int64_t time = 0;
        BoardState state;
    };
    Told state_;
    Told trouble_;  // an empty name: none
};

class BoardStates {
  public:
    // `changed` is called on the thread after anything that may have changed the inventory.
    BoardStates(console::DaemonConnection& daemon, std::function<void()> changed);

    // Of a board without regard to case, while none of its operations runs.
    BoardState Of(const std::string& board, std::int64_t since) const;

  private:
    void Work(const std::stop_token& stop);
    void Follow(const std::stop_token& stop);

    console::DaemonConnection& daemon_;
    const std::function<void()> changed_;
    mutable std::mutex mutex_;
    std::map<std::string, BoardStory> stories_;  // by name in lower case
    std::jthread thread_;                        // the last member: it uses the others
};

// The name as boards are told apart by.
std::string FoldedName(const std::string& name);

}  // namespace oam::fleet
