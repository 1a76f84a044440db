// What the fleet knows of each host, and whether the host is there.
//
//   alive   its heart beats, and its daemon answers
//   stale   neither is so: no heartbeat for three of them, or the daemon is silent or away
//   gone    its agent has ended, or nothing was heard for so long that the entry is gone
//
// Times are compared by the servers' clocks alone.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/fleet/host_pattern.h"
#include "fleet/link/link.h"
#include "fleet/records.h"

namespace oam::fleet {

enum class Presence { kAlive, kStale, kGone };
const char* PresenceText(Presence presence);

struct Sight {
    std::string host;
    Presence presence = Presence::kGone;
    std::string since;  // when it became stale or gone; empty: it is alive, or nobody knows
    std::string why;
    std::optional<HostRecord> record;  // nothing: it has never told what it is
};

// How a host is whose last beat came at `heard`, at the time `now`; both in nanoseconds since 1970.
Sight Judge(const Beat& beat, std::int64_t heard, std::int64_t now);

// All that match, by name.
std::vector<Sight> LookAtHosts(Link& link, const HostPattern& pattern);

}  // namespace oam::fleet
