// A keyword that the plug-in keeps in an object, as one row: its first value and its qualifiers.
//
// The value is the user's: it is written only when there is none. The qualifiers are the plug-in's:
// they are made as the row says every time, so that a new version's ranges hold for old objects
// too.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "oam/codes.h"

namespace oam::sim {

// An empty text stands for a qualifier that is not stored.
struct KeywordRule {
    std::string name{};
    std::optional<std::string> value{};  // none: the service stores the keyword
    std::string type = "String";
    std::string min{};
    std::string max{};
    std::string base{};
    std::vector<std::string> choices{};
    bool isReadOnly = false;
    bool isDistinct = false;
    std::string description{};
};

// The row of a whole number in [min, max].
KeywordRule numberRule(std::string name, std::optional<long long> value, long long min,
                       long long max, std::string description);

// These need a handle in read-write and provider mode.
oam_result installKeyword(unsigned long handle, const KeywordRule& rule);
oam_result removeKeyword(unsigned long handle, const KeywordRule& rule);

// All of them, up to the first failure.
oam_result installKeywords(unsigned long handle, const std::vector<KeywordRule>& rules);

}  // namespace oam::sim
