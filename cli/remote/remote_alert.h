// An alert of the API as the tool knows alerts.
#pragma once

#include "alert_inbox.h"
#include "oam/v1/alerts.pb.h"

namespace oam {

inline std::chrono::system_clock::time_point TimeOf(const google::protobuf::Timestamp& told) {
    using namespace std::chrono;
    const auto since = seconds(told.seconds()) + nanoseconds(told.nanos());
    return system_clock::time_point(duration_cast<system_clock::duration>(since));
}

inline Alert AlertOf(const v1::Alert& told) {
    return {TimeOf(told.time()), told.code(),      told.severity(), told.source(),
            told.text(),         told.code_name(), told.sequence()};
}

}  // namespace oam
