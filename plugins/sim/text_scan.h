// Reading the plug-in's own small languages: chassis files, curves, outcomes and commands. What any
// module reads is the kit's (kit/text_scan.h).
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "kit/text_scan.h"

namespace oam::sim {

// Takes the part before the separator (or all) off the front of *rest, trimmed.
std::string_view takePart(std::string_view* rest, char separator);

// "250ms", "2s", "1m", or a bare number of milliseconds; at most kLongestTime.
inline constexpr std::chrono::milliseconds kLongestTime = std::chrono::hours(1);
std::optional<std::chrono::milliseconds> timeSpan(std::string_view text);

}  // namespace oam::sim
