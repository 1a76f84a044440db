#include "fleet/agent/presence.h"

#include "fleet/agent/stop.h"
#include "fleet/link/bucket.h"
#include "fleet/names.h"

namespace oam::fleet {

Presence::Presence(const DaemonWatch& watch, std::string host, std::chrono::milliseconds interval,
                   AgentFigures& figures)
    : watch_(watch), host_(std::move(host)), interval_(interval), figures_(figures) {}

Beat Presence::Next() {
    const auto state = watch_.Now();
    return {host_,        ++sequence_, NowText(), static_cast<unsigned>(interval_.count()),
            state.daemon, state.since};
}

void Presence::Serve(Link& link, const std::stop_token& stop, const std::stop_token& end) {
    Bucket bucket(link, kPresenceBucket);
    const std::string key = TokenOf(host_);
    try {
        do {
            bucket.Say(key, ToText(Next()));
            ++figures_.beats;
        } while (!WaitForStop(stop, interval_) && link.IsUp());
        if (!end.stop_requested()) return;
        Beat last = Next();
        last.daemon = Beat::Daemon::kEnded;
        last.since = last.sent;
        bucket.Say(key, ToText(last));
        link.Flush();
    } catch (const EngineFailure&) {
        // The link is gone, and with it this session.
    }
}

}  // namespace oam::fleet
