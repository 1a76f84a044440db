// What is judged. The rules are told once, in rules.def.
#pragma once

#include <cstddef>

namespace oam::check {

enum class Severity { Error, Warning, Note };

enum class Rule {
#define CHECK_RULE(id, name, severity, sentence) id,
#include "rules.def"
#undef CHECK_RULE
};

struct RuleRow {
    const char* name;
    Severity severity;
    const char* sentence;
};

inline constexpr RuleRow kRules[] = {
#define CHECK_RULE(id, name, severity, sentence) {name, Severity::severity, sentence},
#include "rules.def"
#undef CHECK_RULE
};

constexpr const RuleRow& RowOf(Rule rule) { return kRules[static_cast<std::size_t>(rule)]; }

constexpr const char* NameOf(Severity severity) {
    switch (severity) {
        case Severity::Error:
            return "error";
        case Severity::Warning:
            return "warning";
        case Severity::Note:
            break;
    }
    return "note";
}

}  // namespace oam::check
