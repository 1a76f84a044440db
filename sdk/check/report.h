// The result of a check, for people and for programs.
#pragma once

#include <string>
#include <vector>

#include "finding.h"

namespace oam::check {

struct Verdict {
    std::string file;
    ModuleKind kind;
    std::vector<Finding> findings;  // each once, in the order of the rules

    Verdict(std::string checked, ModuleKind of, std::vector<Finding> all);

    std::size_t Count(Severity severity) const;
    bool IsPassed() const { return Count(Severity::Error) == 0 && Count(Severity::Warning) == 0; }
};

std::string AsText(const Verdict& verdict);
std::string AsJson(const Verdict& verdict);
// The table of all rules.
std::string RulesAsText();

}  // namespace oam::check
