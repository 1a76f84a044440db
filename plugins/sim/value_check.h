// May this keyword take this value? The qualifiers stored beside it say.
//
//   ReadOnly       "Yes": only the plug-in itself changes it
//   Type           Integer: a whole number in Base, from Min to Max
//                  Object: a text fit to name an object
//                  FileName: a file's name without directories
//                  String: any text
//   Choices.Count  above 0: one of Choices[0], Choices[1], ... in any case, stored as spelled there
//   Distinct       "Yes": no other element of the array has the value
//
// A qualifier that is not stored has the service's default. Whatever the type, the value must be
// one that the data file can keep. There is no rule about a particular keyword here, so a keyword
// that is added later is checked from its qualifiers alone.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "oam/codes.h"

namespace oam::sim {

// The value as it is to be stored; nothing when the qualifiers forbid it.
std::optional<std::string> acceptedValue(unsigned long handle, const std::string& keyword,
                                         std::string_view value);

// A client's change: OAMERR_ACCESS_DENIED for what only the plug-in changes (qualifiers too),
// OAMERR_SET_BOARD_KEYWORD_FAIL for a name or value that is no good, else 0 and the value to store.
oam_result checkChange(unsigned long handle, const std::string& keyword, std::string_view value,
                       std::string* stored);

}  // namespace oam::sim
