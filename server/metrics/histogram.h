// How long things took, in seconds: how many up to each bound, and the sum.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace oam::server {

struct Histogram {
    static constexpr std::array<double, 12> kBounds = {0.01, 0.05, 0.1, 0.25, 0.5, 1,
                                                       2.5,  5,    10,  30,   60,  300};

    // How many lay up to each bound, and not up to the one before; the last: above all.
    std::array<std::uint64_t, kBounds.size() + 1> counts{};
    double sum = 0;

    void Observe(double seconds) noexcept {
        std::size_t i = 0;
        while (i < kBounds.size() && seconds > kBounds[i]) ++i;
        ++counts[i];
        sum += seconds;
    }
};

}  // namespace oam::server
