// What the agent counts, without locks, for its metrics.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

#include "fleet/records.h"

namespace oam::fleet {

enum class CommandEnd { kDone, kRefused, kNoDaemon };

struct AgentFigures {
    std::atomic<bool> isLinked{false};
    std::atomic<std::uint64_t> links{0};           // connections made
    std::atomic<std::uint64_t> linkFailures{0};    // tries that made none
    std::atomic<std::uint64_t> serversRefused{0};  // of them: servers that let anyone in
    std::atomic<std::uint64_t> beats{0};
    std::atomic<std::uint64_t> hostsPut{0}, boardsPut{0};
    std::atomic<std::uint64_t> alerts{0};       // acknowledged by the stream
    std::atomic<std::uint64_t> alertsThere{0};  // of them: the stream had them already
    std::atomic<std::uint64_t> gaps{0};         // told to the stream
    std::atomic<std::uint64_t> lookedAgain{0};  // how often it had to ask the stream where it is
    std::atomic<std::uint64_t> published{0};    // the number behind which it goes on
    std::atomic<std::uint64_t> newest{0};       // of the daemon
    std::array<std::atomic<std::uint64_t>, 3> commands{};  // by CommandEnd
    std::atomic<std::uint64_t> commandsRunning{0};
    std::atomic<int> daemon{static_cast<int>(Beat::Daemon::kAway)};

    void Count(CommandEnd end) { ++commands.at(static_cast<std::size_t>(end)); }
};

// In the text format that Prometheus reads.
std::string AgentMetrics(const AgentFigures& figures, const std::string& host);

}  // namespace oam::fleet
