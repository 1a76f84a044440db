// The stream and the buckets of a fleet, made or brought up to what is asked for. Agents make
// nothing: they wait for what a keeper of the fleet has made (`oam fleet init`).
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "fleet/link/link.h"

namespace oam::fleet {

struct FleetPlan {
    unsigned replicas = 3;
    std::chrono::seconds alertAge = std::chrono::hours(24 * 30);  // 0: as long as there is room
    std::int64_t alertBytes = 0;                                  // 0: as the server allows
    // A host that is silent for so long has no entry any more.
    std::chrono::seconds presenceAge = std::chrono::minutes(10);
};

struct MadeStream {
    std::string name;
    bool isNew = false;  // else it was there, and is as asked for now
};
// One after the other; a Failure at the first that the server refuses.
std::vector<MadeStream> MakeFleet(Link& link, const FleetPlan& plan);

}  // namespace oam::fleet
