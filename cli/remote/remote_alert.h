// An alert of the API as the tool knows alerts.
#pragma once

#include "alert_inbox.h"
#include "oam/v1/alerts.pb.h"

namespace oam {

inline Alert AlertOf(const v1::Alert& told) {
    using namespace std::chrono;
    const auto since = seconds(told.time().seconds()) + nanoseconds(told.time().nanos());
    return {system_clock::time_point(duration_cast<system_clock::duration>(since)),
            told.code(),
            told.severity(),
            told.source(),
            told.text(),
            told.code_name(),
            told.sequence()};
}

}  // namespace oam
