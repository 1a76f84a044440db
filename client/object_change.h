// Changing several keywords of an object in one commit: all of them, or none.
#pragma once

#include <string>
#include <vector>

namespace oam {

struct Assignment {
    std::string keyword;
    std::string value;
};

// "KEYWORD=VALUE", split at the first '='; anything else is a UsageError.
std::vector<Assignment> ParseAssignments(const std::vector<std::string>& texts);

// Throws a Failure, and keeps nothing, when the object refuses one of them or the commit, or when a
// data file could not keep one of them. `withoutAlert`: the commit raises no OAMEVN_MODIFIED.
void ApplyChange(const std::string& object, const std::vector<Assignment>& assignments,
                 bool withoutAlert = false);

}  // namespace oam
