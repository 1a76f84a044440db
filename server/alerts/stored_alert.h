// An alert with its number, as the daemon keeps it.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace oam::server {

struct StoredAlert {
    std::uint64_t sequence = 0;
    std::chrono::system_clock::time_point time;
    std::uint32_t code = 0;
    std::uint32_t severity = 0;
    std::string source;
    std::string text;
    std::string operation;  // whose outcome it is; empty: nobody's
};

}  // namespace oam::server
