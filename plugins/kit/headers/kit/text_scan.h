// Reading texts of unknown origin: keyword names and values, files, alerts.
//
// Nothing here trusts a length, a sign or an encoding: numbers are bounded, bytes above 127 are
// ordinary letters, and case means ASCII case, as everywhere in the service.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace oam::kit {

constexpr char lowerLetter(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

constexpr bool isControl(char letter) {
    return static_cast<unsigned char>(letter) < 0x20 || letter == 0x7f;
}

constexpr bool isHexDigit(char letter) {
    const char lowered = lowerLetter(letter);
    return (lowered >= '0' && lowered <= '9') || (lowered >= 'a' && lowered <= 'f');
}

inline bool sameText(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, lowerLetter, lowerLetter);
}

inline std::string lowerCase(std::string_view text) {
    std::string lowered(text);
    std::ranges::transform(lowered, lowered.begin(), lowerLetter);
    return lowered;
}

inline bool hasControl(std::string_view text) { return std::ranges::any_of(text, isControl); }

inline std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\n\v\f\r";
    const auto first = std::min(text.find_first_not_of(kBlanks), text.size());
    return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

// A whole number that fills the text and lies in [min, max].
inline std::optional<long long> boundedNumber(std::string_view text, long long min, long long max,
                                              int base = 10) {
    long long number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    if (error != std::errc() || stop != end || number < min || number > max) return {};
    return number;
}

// The text in quotes for a message: cut to a readable length, control characters as '?'.
inline std::string quoted(std::string_view text) {
    constexpr std::size_t kReadable = 60;
    std::string shown(text.substr(0, kReadable));
    std::ranges::replace_if(shown, isControl, '?');
    return '"' + shown + (text.size() > kReadable ? "...\"" : "\"");
}

}  // namespace oam::kit
