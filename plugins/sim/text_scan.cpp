#include "text_scan.h"

#include <algorithm>
#include <array>

namespace oam::sim {
namespace {

struct TimeUnit {
    std::string_view suffix;
    std::chrono::milliseconds length;
};

// "ms" stands before "s", which is its end.
constexpr std::array kTimeUnits = {
    TimeUnit{"ms", std::chrono::milliseconds(1)}, TimeUnit{"s", std::chrono::seconds(1)},
    TimeUnit{"m", std::chrono::minutes(1)}, TimeUnit{"", std::chrono::milliseconds(1)}};

}  // namespace

std::string_view takePart(std::string_view* rest, char separator) {
    const auto end = std::min(rest->find(separator), rest->size());
    const auto part = kit::trimmed(rest->substr(0, end));
    rest->remove_prefix(std::min(end + 1, rest->size()));
    return part;
}

std::optional<std::chrono::milliseconds> timeSpan(std::string_view text) {
    const auto unit = std::find_if(kTimeUnits.begin(), kTimeUnits.end(),
                                   [&](const TimeUnit& row) { return text.ends_with(row.suffix); });
    text.remove_suffix(unit->suffix.size());
    const auto number = kit::boundedNumber(kit::trimmed(text), 0, kLongestTime / unit->length);
    if (!number) return {};
    return *number * unit->length;
}

}  // namespace oam::sim
