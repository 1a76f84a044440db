// The alerts of the service in this process: the callback puts them in, the command takes them out.
//
// The callback runs on the service's threads, at times with the service's locks held, so it copies
// the alert and returns; it never waits for the command. Only alerts that the command asked for are
// kept, and at most kAlertsKept of them: a plug-in that floods costs alerts, not memory.
//
// The one inbox is never destroyed, because a detached thread of the service may raise an alert
// while the process ends.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "oam/message.h"

namespace oam {

class Interruption;

struct Alert {
    std::chrono::system_clock::time_point time;
    unsigned code;
    unsigned severity;
    std::string source;
    std::string text;
    // Of a daemon: the code's name, and the alert's number.
    std::string codeName = {};
    uint64_t sequence = 0;
};

// A text of a record that may come from a plug-in: empty when the offset is outside of it.
std::string RecordText(const oam_msg_tag& message, uint32_t offset);

constexpr size_t kAlertsKept = 10000;

class AlertInbox {
  public:
    using Wanted = std::function<bool(const Alert&)>;
    using Deadline = std::optional<std::chrono::steady_clock::time_point>;

    static AlertInbox& Instance();

    // From now on alerts for which `wanted` is true are kept. Those kept earlier stay. `wanted`
    // runs on the service's threads and must not call the service.
    void Listen(Wanted wanted);

    // The next alert; nothing when there is none now.
    std::optional<Alert> Take();
    // The same, waiting for it until the deadline or an interruption.
    std::optional<Alert> Wait(const Deadline& deadline, const Interruption& interruption);

    // How many alerts found no room since the last question.
    size_t TakeLost();

    void Put(const oam_msg_tag& message) noexcept;

  private:
    AlertInbox();

    std::mutex mutex_;
    Wanted wanted_;
    std::deque<Alert> alerts_;
    size_t lost_ = 0;
    int event_;
};

}  // namespace oam
