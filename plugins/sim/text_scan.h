// Reading texts of unknown origin: chassis files, keyword values, commands.
//
// Nothing here trusts a length, a sign or an encoding: numbers are bounded, bytes above 127 are
// ordinary letters, and case means ASCII case, as everywhere in the service.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace oam::sim {

std::string_view trimmed(std::string_view text);
bool sameText(std::string_view left, std::string_view right);
std::string lowerCase(std::string_view text);
bool hasControlCharacter(std::string_view text);

// Takes the part before the separator (or all) off the front of *rest, trimmed.
std::string_view takePart(std::string_view* rest, char separator);

// A number that fills the whole text and lies in [min, max].
std::optional<long long> boundedNumber(std::string_view text, long long min, long long max,
                                       int base = 10);

// "250ms", "2s", "1m", or a bare number of milliseconds; at most kLongestTime.
inline constexpr std::chrono::milliseconds kLongestTime = std::chrono::hours(1);
std::optional<std::chrono::milliseconds> timeSpan(std::string_view text);

// The text in quotes for a message: cut to a readable length, control characters as '?'.
std::string inQuotes(std::string_view text);

}  // namespace oam::sim
