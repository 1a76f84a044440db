// What a reader asks for.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "alerts/stored_alert.h"

namespace oam::server {

struct AlertFilter {
    std::vector<std::uint32_t> codes;  // empty: all
    // As severities mean: 0 information, 1 warning, and any other value is an error.
    std::uint32_t leastSeverity = 0;
    std::string source;    // empty: all; without regard to case
    std::string textPart;  // empty: all

    bool Matches(const StoredAlert& alert) const;
};

}  // namespace oam::server
