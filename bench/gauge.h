// What the benchmarks' plug-in tells of the starts that reach it.
#pragma once

#include <atomic>
#include <chrono>

namespace oam::bench {

// The plug-in's only product.
constexpr const char* kProduct = "Bench";

struct Gauge {
    std::chrono::steady_clock::time_point entered;  // before `entries` counts it
    std::atomic<unsigned> entries{0};
};

}  // namespace oam::bench
