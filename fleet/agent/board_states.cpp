#include "fleet/agent/board_states.h"

#include "daemon/message_stream.h"
#include "fleet/agent/stop.h"
#include "oam/codes.h"

namespace oam::fleet {
namespace {

constexpr auto kLook = std::chrono::milliseconds(200);
constexpr auto kPause = std::chrono::seconds(1);

// After these the inventory may be another one.
constexpr unsigned kTelling[] = {
    OAMEVN_CREATED,           OAMEVN_DELETED,         OAMEVN_RENAMED,
    OAMEVN_MODIFIED,          OAMEVN_BOARD_DEAD,      OAMEVN_TEMPERATURE_WARNING,
    OAMEVN_TEMPERATURE_ALERT, OAMEVN_FAN_RPM_WARNING, OAMEVN_STARTBOARD_DONE,
    OAMEVN_STOPBOARD_DONE,    OAMEVN_TESTBOARD_DONE,
};

constexpr unsigned kInformation = 0;

}  // namespace

std::string FoldedName(const std::string& name) {
    std::string folded = name;
    for (char& c : folded)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return folded;
}

void BoardStory::Take(const v1::Alert& alert) {
    const std::int64_t time = alert.time().seconds();
    const bool isWell = alert.severity() == kInformation;
    switch (alert.code()) {
        case OAMEVN_STARTBOARD_DONE:
            state_ = {time,
                      isWell ? BoardState{"started", "good"} : BoardState{"start failed", "bad"}};
            trouble_ = {};
            break;
        case OAMEVN_STOPBOARD_DONE:
            state_ = {time,
                      isWell ? BoardState{"stopped", "idle"} : BoardState{"stop failed", "bad"}};
            trouble_ = {};
            break;
        case OAMEVN_BOARD_DEAD:
            trouble_ = {time, {"dead", "bad"}};
            break;
        case OAMEVN_TEMPERATURE_ALERT:
            trouble_ = {time, {"too hot", "bad"}};
            break;
        case OAMEVN_TEMPERATURE_WARNING:
            if (trouble_.time == 0 || trouble_.state.tone != "bad")
                trouble_ = {time, {"warm", "warn"}};
            break;
        case OAMEVN_FAN_RPM_WARNING:
            if (trouble_.time == 0) trouble_ = {time, {"fan slow", "warn"}};
            break;
        default:
            break;
    }
}

BoardState BoardStory::State(std::int64_t since) const {
    if (trouble_.time != 0 && trouble_.time >= since) return trouble_.state;
    return state_.time >= since && state_.time != 0 ? state_.state : BoardState{};
}

BoardStates::BoardStates(console::DaemonConnection& daemon, std::function<void()> changed)
    : daemon_(daemon),
      changed_(std::move(changed)),
      thread_([this](const std::stop_token& stop) { Work(stop); }) {}

BoardState BoardStates::Of(const std::string& board, std::int64_t since) const {
    const std::lock_guard hold(mutex_);
    const auto found = stories_.find(FoldedName(board));
    return found == stories_.end() ? BoardState{} : found->second.State(since);
}

void BoardStates::Work(const std::stop_token& stop) {
    do Follow(stop);
    while (!WaitForStop(stop, kPause));
}

void BoardStates::Follow(const std::stop_token& stop) {
    const auto channel = daemon_.Channel();
    if (!channel) return;
    v1::WatchAlertsRequest request;
    request.set_after(0);
    for (const unsigned code : kTelling) request.mutable_filter()->add_codes(code);
    console::MessageStream stream(channel, "/oam.v1.Alerts/WatchAlerts",
                                  request.SerializeAsString(), {});
    {
        const std::lock_guard hold(mutex_);
        stories_.clear();
    }
    bool isCaughtUp = false;
    while (!stop.stop_requested()) {
        const auto bytes = stream.Next(kLook);
        if (!bytes) {
            if (!stream.End()) continue;
            if (console::IsConnectionGone(*stream.End())) daemon_.Lost(channel);
            return;
        }
        v1::WatchAlertsResponse told;
        (void)told.ParseFromString(*bytes);
        if (told.has_alert()) {
            const std::lock_guard hold(mutex_);
            stories_[FoldedName(told.alert().source())].Take(told.alert());
        }
        isCaughtUp |= told.has_caught_up();
        // What is long past needs no look of its own.
        if (isCaughtUp) changed_();
    }
}

}  // namespace oam::fleet
