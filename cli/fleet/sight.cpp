#include "cli/fleet/sight.h"

#include <algorithm>
#include <map>

#include "fleet/link/bucket.h"
#include "fleet/names.h"
#include "mirror/time_text.h"

namespace oam::fleet {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
constexpr std::int64_t kMilli = 1'000'000;
constexpr int kBeatsMissed = 3;

std::string timeText(std::int64_t nanos) {
    return console::TimeText(nanos / kSecond, static_cast<int>(nanos % kSecond));
}

}  // namespace

const char* PresenceText(Presence presence) {
    constexpr const char* kTexts[] = {"alive", "stale", "gone"};
    return kTexts[static_cast<int>(presence)];
}

Sight Judge(const Beat& beat, std::int64_t heard, std::int64_t now) {
    Sight sight;
    sight.host = beat.host;
    sight.since = beat.since;
    if (beat.daemon == Beat::Daemon::kEnded) {
        sight.why = "its agent has ended";
        return sight;
    }
    sight.presence = Presence::kStale;
    const std::int64_t patience =
        std::max(kSecond, std::int64_t{beat.interval} * kMilli) * kBeatsMissed;
    if (now - heard >= patience) {
        sight.since = timeText(heard);
        sight.why = "no heartbeat";
    } else if (beat.daemon == Beat::Daemon::kSilent) {
        sight.why = "its daemon does not answer";
    } else if (beat.daemon == Beat::Daemon::kAway) {
        sight.why = "no daemon runs";
    } else {
        sight.presence = Presence::kAlive;
        sight.since.clear();
    }
    return sight;
}

std::vector<Sight> LookAtHosts(Link& link, const HostPattern& pattern) {
    std::map<std::string, Sight> hosts;
    // A record that cannot be read is somebody else's mistake: the host is shown without it.
    Bucket known(link, kHostBucket);
    for (const Stored& stored : known.ReadAll().values) {
        const auto name = NameOf(known.KeyOf(stored));
        if (!name || !pattern.Matches(*name)) continue;
        Sight& sight = hosts[*name];
        sight.why = "nothing was heard of it for long";
        try {
            sight.record = ReadHost(stored.data);
        } catch (const BadRecord& error) {
            sight.why = std::string("its record cannot be read: ") + error.what();
        }
    }
    Bucket beats(link, kPresenceBucket);
    const auto content = beats.ReadAll();
    for (const Stored& stored : content.values) {
        const auto name = NameOf(beats.KeyOf(stored));
        if (!name || !pattern.Matches(*name)) continue;
        auto record = std::move(hosts[*name].record);
        try {
            hosts[*name] = Judge(ReadBeat(stored.data), stored.time, content.now);
        } catch (const BadRecord& error) {
            hosts[*name].presence = Presence::kStale;
            hosts[*name].why = std::string("its heartbeat cannot be read: ") + error.what();
        }
        hosts[*name].record = std::move(record);
    }
    std::vector<Sight> all;
    for (auto& [name, sight] : hosts) {
        sight.host = name;
        all.push_back(std::move(sight));
    }
    return all;
}

}  // namespace oam::fleet
