// Operations of this start of the daemon, counted.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "metrics/histogram.h"

namespace oam::server {

constexpr std::size_t kOperationKinds = 3;   // of OperationKind
constexpr std::size_t kOperationStates = 5;  // of OperationState

struct OperationTotals {
    // By kind and state.
    std::array<std::array<std::uint64_t, kOperationStates>, kOperationKinds> ended{};
    // Of those that were done or failed.
    std::array<Histogram, kOperationKinds> durations{};
    std::size_t running = 0;
};

}  // namespace oam::server
