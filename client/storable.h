// What a data file can keep.
//
// The service stores any text, but writes it to its data files as it stands, without escapes: some
// texts come back changed at the next start, and some make the whole file unreadable, so that the
// object is lost. The tool refuses them before they are stored. Each function answers why, or the
// empty text.
#pragma once

#include <string>

namespace oam {

constexpr size_t kLongestName = 127;
constexpr size_t kLongestValue = 2047;

std::string WhyObjectNameIsLost(const std::string& name);

// `object` counts too: both names share one buffer of the service's reader.
std::string WhyKeywordNameIsLost(const std::string& object, const std::string& keyword);

std::string WhyValueIsLost(const std::string& value);

// The new name of an object that is a board now.
std::string WhyBoardNameIsLost(const std::string& name);

}  // namespace oam
