// A moment as the API tells it.
#pragma once

#include <google/protobuf/timestamp.pb.h>

#include <chrono>

namespace oam::server {

inline void Tell(std::chrono::system_clock::time_point time, google::protobuf::Timestamp* told) {
    using std::chrono::nanoseconds;
    using std::chrono::seconds;
    const auto since = time.time_since_epoch();
    const auto whole = std::chrono::floor<seconds>(since);
    told->set_seconds(whole.count());
    told->set_nanos(
        static_cast<int>(std::chrono::duration_cast<nanoseconds>(since - whole).count()));
}

}  // namespace oam::server
