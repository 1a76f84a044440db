// Names of array keywords: "Base.Count", and "Base[i]" or "Base[i].Member" for each element.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "kit/text_scan.h"

namespace oam::kit {

// More elements than any object has: what bounds an index from outside.
inline constexpr std::size_t kMostElements = 1 << 20;

struct ArrayElement {
    std::size_t index;
    std::string_view rest;  // after the bracket: empty, or ".Member"
};

inline std::string elementName(std::string_view base, std::size_t index,
                               std::string_view rest = {}) {
    std::string name(base);
    name.append("[").append(std::to_string(index)).append("]").append(rest);
    return name;
}

inline std::string countName(std::string_view base) { return std::string(base) + ".Count"; }

// Nothing unless the keyword is an element of the array. Only the plain spelling of an index names
// one: "[07]" would be a second name for the keyword "[7]".
inline std::optional<ArrayElement> elementOf(std::string_view keyword, std::string_view base) {
    if (!sameText(keyword.substr(0, base.size()), base)) return {};
    keyword.remove_prefix(base.size());
    const auto close = keyword.find(']');
    if (!keyword.starts_with('[') || close == std::string_view::npos) return {};
    const auto digits = keyword.substr(1, close - 1);
    const auto index = boundedNumber(digits, 0, kMostElements);
    if (!index || std::to_string(*index) != digits) return {};
    return ArrayElement{static_cast<std::size_t>(*index), keyword.substr(close + 1)};
}

}  // namespace oam::kit
