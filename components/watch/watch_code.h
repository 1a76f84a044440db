// The component's own alert code.
#pragma once

#include "oam/codes.h"

namespace oam::watch {

inline constexpr oam_result WATCH_TOO_MANY_FAILURES{0x50010001};

// The code's name, a static text; null for every other code.
constexpr const char* codeName(unsigned int code) {
    return code == WATCH_TOO_MANY_FAILURES ? "WATCH_TOO_MANY_FAILURES" : nullptr;
}

}  // namespace oam::watch
