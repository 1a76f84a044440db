// Calling foreign code. What it throws becomes a failure: OAM_REASON_FAILED, or no text. A call
// that lies too deep in others is not made: OAMERR_ACCESS_DENIED, or no text.
//
// Only sources built with exceptions can include this (see oam_calls_out in cmake/rooms.cmake); in
// all others a plug-in is called through the entries that those sources wrap.
#pragma once

#include "base/foreign_frame.h"
#include "oam/codes.h"

namespace oam {

template <class... Parameters, class... Arguments>
oam_result GuardedCall(unsigned int (*entry)(Parameters...), Arguments... arguments) noexcept {
    const ForeignFrame frame;
    if (!frame.MayEnter()) return OAMERR_ACCESS_DENIED;
    try {
        return oam_result(entry(arguments...));
    } catch (...) {
        return OAM_REASON_FAILED;
    }
}

inline const char* GuardedText(const char* (*entry)(unsigned int), unsigned int code) noexcept {
    const ForeignFrame frame;
    if (!frame.MayEnter()) return nullptr;
    try {
        return entry(code);
    } catch (...) {
        return nullptr;
    }
}

}  // namespace oam
