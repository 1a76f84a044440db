// Calling foreign code. What it throws becomes a failure: OAM_REASON_FAILED, or no text. A call
// that lies too deep in others is not made: OAMERR_ACCESS_DENIED, or no text. Each call that is
// made has a mark, by which one that hangs is found.
//
// Only sources built with exceptions can include this (see oam_calls_out in cmake/rooms.cmake); in
// all others a plug-in is called through the entries that those sources wrap.
#pragma once

#include "base/foreign_frame.h"
#include "korcore/call_marks.h"
#include "oam/codes.h"

namespace oam {

struct Called {
    unsigned module;
    KorEntryName entry;
    const char* about;
};

template <class... Parameters, class... Arguments>
oam_result GuardedCall(const Called& called, unsigned int (*entry)(Parameters...),
                       Arguments... arguments) noexcept {
    const ForeignFrame frame;
    if (!frame.MayEnter()) return OAMERR_ACCESS_DENIED;
    const KorCallMark mark(called.module, called.entry, called.about);
    try {
        return oam_result(entry(arguments...));
    } catch (...) {
        return OAM_REASON_FAILED;
    }
}

inline const char* GuardedText(const Called& called, const char* (*entry)(unsigned int),
                               unsigned int code) noexcept {
    const ForeignFrame frame;
    if (!frame.MayEnter()) return nullptr;
    const KorCallMark mark(called.module, called.entry, called.about);
    try {
        return entry(code);
    } catch (...) {
        return nullptr;
    }
}

}  // namespace oam
