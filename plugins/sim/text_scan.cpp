#include "text_scan.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace oam::sim {
namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";
constexpr std::size_t kQuotedLength = 60;

char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool isControl(char letter) {
    const auto byte = static_cast<unsigned char>(letter);
    return byte < 0x20 || byte == 0x7f;
}

struct TimeUnit {
    std::string_view suffix;
    std::chrono::milliseconds length;
};

// "ms" stands before "s", which is its end.
constexpr std::array kTimeUnits = {
    TimeUnit{"ms", std::chrono::milliseconds(1)}, TimeUnit{"s", std::chrono::seconds(1)},
    TimeUnit{"m", std::chrono::minutes(1)}, TimeUnit{"", std::chrono::milliseconds(1)}};

}  // namespace

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool sameText(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char one, char other) { return lower(one) == lower(other); });
}

std::string lowerCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

bool hasControlCharacter(std::string_view text) {
    return std::any_of(text.begin(), text.end(), isControl);
}

std::string_view takePart(std::string_view* rest, char separator) {
    const auto end = std::min(rest->find(separator), rest->size());
    const auto part = trimmed(rest->substr(0, end));
    rest->remove_prefix(std::min(end + 1, rest->size()));
    return part;
}

std::optional<long long> boundedNumber(std::string_view text, long long min, long long max,
                                       int base) {
    long long number = 0;
    const auto end = text.data() + text.size();
    const auto scan = std::from_chars(text.data(), end, number, base);
    if (scan.ec != std::errc() || scan.ptr != end || number < min || number > max) return {};
    return number;
}

std::optional<std::chrono::milliseconds> timeSpan(std::string_view text) {
    const auto unit = std::find_if(kTimeUnits.begin(), kTimeUnits.end(),
                                   [&](const TimeUnit& row) { return text.ends_with(row.suffix); });
    text.remove_suffix(unit->suffix.size());
    const auto number = boundedNumber(trimmed(text), 0, kLongestTime / unit->length);
    if (!number) return {};
    return *number * unit->length;
}

std::string inQuotes(std::string_view text) {
    std::string result = "\"";
    for (const char letter : text.substr(0, kQuotedLength)) {
        result += isControl(letter) ? '?' : letter;
    }
    return result + (text.size() > kQuotedLength ? "...\"" : "\"");
}

}  // namespace oam::sim
