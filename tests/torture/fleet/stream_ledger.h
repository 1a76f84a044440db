// What the stream has of each host, beside what the host's own daemon has.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "fleet.h"

namespace oam::torture {

struct StreamLedger {
    std::uint64_t alerts = 0;
    std::uint64_t inGaps = 0;  // numbers that a host did not have any more, told as a gap
    std::set<std::string> hostsWithGaps;
    // What is twice, out of order, missing without a gap, in a gap though the host has it, or
    // another than the host's.
    std::vector<std::string> faults;
};

// Waits until the stream has each host's newest alert, and compares all of them. Nothing may be
// raised meanwhile.
StreamLedger CompareStreamWithHosts(Fleet& fleet);

// Until the stream has each host's newest alert; false when it takes too long.
bool AwaitCaughtUp(Fleet& fleet);

}  // namespace oam::torture
