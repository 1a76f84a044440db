// What a data file can keep.
//
// The file holds names and values as they are, between '<' and '>', and its reader trims white
// space. A text that would come back changed, or spoil the file, must never reach the database.
#pragma once

#include <cstddef>
#include <string_view>

#include "kit/text_scan.h"

namespace oam::kit {

inline constexpr std::size_t kLongestValue = 2047;
inline constexpr std::size_t kLongestKeyword = 120;
// The service reads names, products and serial numbers into 128 bytes.
inline constexpr std::size_t kLongestName = 127;

inline bool canKeepValue(std::string_view value) {
    return value.size() <= kLongestValue && value == trimmed(value) && !hasControl(value) &&
           value.find('<') == std::string_view::npos;
}

// A name stands in a tag and in a path; some first letters make a tag of another kind.
inline bool canBeName(std::string_view name) {
    return !name.empty() && canKeepValue(name) &&
           name.find_first_of(">\\") == std::string_view::npos &&
           std::string_view("!?/").find(name.front()) == std::string_view::npos;
}

inline bool canKeepKeyword(std::string_view keyword) {
    return keyword.size() <= kLongestKeyword && canBeName(keyword);
}

// An object that is called as a module's file is taken for that module's at the next start.
inline bool canNameObject(std::string_view name) {
    const auto extension = name.substr(std::min(name.rfind('.'), name.size()));
    return name.size() <= kLongestName && canBeName(name) && !sameText(extension, ".bpi") &&
           !sameText(extension, ".emc");
}

}  // namespace oam::kit
