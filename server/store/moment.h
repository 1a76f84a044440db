// Times as the book keeps them: microseconds since 1970.
#pragma once

#include <chrono>
#include <cstdint>

namespace oam::server {

inline std::int64_t microsecondsOf(std::chrono::system_clock::time_point moment) {
    return std::chrono::duration_cast<std::chrono::microseconds>(moment.time_since_epoch()).count();
}

inline std::chrono::system_clock::time_point momentOf(std::int64_t microseconds) {
    return std::chrono::system_clock::time_point(std::chrono::microseconds(microseconds));
}

// Now, as the book keeps it: what is told of it live and later is the same.
inline std::chrono::system_clock::time_point MomentNow() {
    return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

}  // namespace oam::server
