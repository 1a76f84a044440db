// What this process uses.
#pragma once

#include <cstddef>

namespace oam::server {

struct ProcessFigures {
    double cpuSeconds = 0;
    double residentBytes = 0;
    std::size_t descriptors = 0;
    std::size_t threads = 0;
};

ProcessFigures ReadProcessFigures();

}  // namespace oam::server
