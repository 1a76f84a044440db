#include "fleet/agent/daemon_watch.h"

#include "fleet/agent/stop.h"
#include "mirror/time_text.h"

namespace oam::fleet {
namespace {

// A daemon that is alive answers this at once, whatever its plug-ins do.
constexpr auto kPatience = std::chrono::milliseconds(2000);

}  // namespace

std::string NowText() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(now);
    return console::TimeText(seconds.count(),
                             static_cast<int>(std::chrono::nanoseconds(now - seconds).count()));
}

DaemonWatch::DaemonWatch(console::DaemonConnection& daemon, std::chrono::milliseconds interval,
                         AgentFigures& figures, std::function<void()> changed)
    : daemon_(daemon),
      interval_(interval),
      figures_(figures),
      changed_(std::move(changed)),
      state_{Beat::Daemon::kAway, NowText()} {
    // The first answer is there before anything is told.
    (void)Ask();
    thread_ = std::jthread([this](const std::stop_token& stop) { Work(stop); });
}

DaemonWatch::State DaemonWatch::Now() const {
    const std::lock_guard hold(mutex_);
    return state_;
}

std::optional<v1::HostInfo> DaemonWatch::Info() const {
    const std::lock_guard hold(mutex_);
    return info_;
}

void DaemonWatch::Work(const std::stop_token& stop) {
    while (!WaitForStop(stop, interval_))
        if (Ask()) changed_();
}

bool DaemonWatch::Ask() {
    std::string answer;
    const auto status = daemon_.Call("/oam.v1.Host/GetHost", "", &answer, {}, true, kPatience);
    v1::HostInfo info;
    const bool isAnswer = status.ok() && info.ParseFromString(answer);
    Beat::Daemon now = Beat::Daemon::kSilent;
    if (isAnswer) now = Beat::Daemon::kAnswering;
    if (console::IsConnectionGone(status)) now = Beat::Daemon::kAway;
    const std::lock_guard hold(mutex_);
    bool isNews = now != state_.daemon;
    if (isNews) state_ = {now, NowText()};
    figures_.daemon = static_cast<int>(now);
    if (!isAnswer) return isNews;
    isNews = isNews || !info_ || info_->running() != info.running() ||
             info_->started().SerializeAsString() != info.started().SerializeAsString();
    figures_.newest = info.newest_alert();
    info_ = std::move(info);
    return isNews;
}

}  // namespace oam::fleet
