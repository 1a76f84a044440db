// Waiting for what another thread does.
#pragma once

#include <chrono>
#include <thread>

namespace oam::sim {

// Generous: a wait that needs it all is a failure.
inline constexpr std::chrono::seconds kLimit{30};

// For a condition that nobody notifies: looks until it holds or the limit is over.
template <class Predicate>
bool becomesTrue(const Predicate& predicate) {
    const auto end = std::chrono::steady_clock::now() + kLimit;
    while (!predicate()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

}  // namespace oam::sim
