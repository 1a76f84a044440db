// What a data file can keep.
//
// The file holds names and values raw, between '<' and '>', and its reader trims white space. A
// text that would come back changed, or spoil the file for good, must never reach the database.
#pragma once

#include <cstddef>
#include <string_view>

namespace oam::sim {

inline constexpr std::size_t kLongestValue = 2047;

// The names of object and keyword share a path of 256 bytes with three more characters.
inline constexpr std::size_t kLongestKeyword = 120;

// What the service reads names, products and serial numbers into is 128 bytes long.
inline constexpr std::size_t kLongestObjectName = 127;

bool canKeepValue(std::string_view value);
bool canKeepKeyword(std::string_view keyword);

// An object's or a product's name: a value that is also a tag and a part of a path.
bool canNameObject(std::string_view name);

}  // namespace oam::sim
