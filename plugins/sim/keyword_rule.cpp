#include "keyword_rule.h"

#include <utility>

#include "kit/db_access.h"

namespace oam::sim {
namespace {

using Qualifiers = std::vector<std::pair<std::string, std::string>>;

// An empty text is a qualifier that is not to be there.
Qualifiers qualifiersOf(const KeywordRule& rule) {
    const auto count = rule.choices.size();
    Qualifiers qualifiers = {{"Type", rule.type},
                             {"Description", rule.description},
                             {"Min", rule.min},
                             {"Max", rule.max},
                             {"Base", rule.base},
                             {"ReadOnly", rule.isReadOnly ? "Yes" : "No"},
                             {"Distinct", rule.isDistinct ? "Yes" : ""},
                             {"Choices.Count", count > 0 ? std::to_string(count) : ""}};
    for (std::size_t i = 0; i < count; ++i) {
        qualifiers.emplace_back("Choices[" + std::to_string(i) + "]", rule.choices[i]);
    }
    return qualifiers;
}

oam_result removeQualifier(unsigned long handle, const char* keyword, const char* qualifier) {
    const auto removed = _oamDbRemoveQualifier(handle, keyword, qualifier);
    return removed == OAMERR_NOT_FOUND ? OAM_SUCCESS : removed;
}

}  // namespace

KeywordRule numberRule(std::string name, std::optional<long long> value, long long min,
                       long long max, std::string description) {
    KeywordRule rule = {.name = std::move(name),
                        .type = "Integer",
                        .min = std::to_string(min),
                        .max = std::to_string(max),
                        .description = std::move(description)};
    if (value) rule.value = std::to_string(*value);
    return rule;
}

oam_result installKeyword(unsigned long handle, const KeywordRule& rule) {
    const auto* const keyword = rule.name.c_str();
    if (rule.value && _oamDbGetKeyword(handle, keyword, nullptr, 0)) {
        if (auto failed = _oamDbSetKeyword(handle, keyword, rule.value->c_str())) return failed;
    }
    for (const auto& [qualifier, value] : qualifiersOf(rule)) {
        const auto failed =
            value.empty() ? removeQualifier(handle, keyword, qualifier.c_str())
                          : _oamDbSetQualifier(handle, keyword, qualifier.c_str(), value.c_str());
        if (failed) return failed;
    }
    return OAM_SUCCESS;
}

oam_result removeKeyword(unsigned long handle, const KeywordRule& rule) {
    const auto* const keyword = rule.name.c_str();
    const auto removed = _oamDbRemoveKeyword(handle, keyword);
    if (removed && removed != OAMERR_NOT_FOUND) return removed;
    for (const auto& [qualifier, value] : qualifiersOf(rule)) {
        if (auto failed = removeQualifier(handle, keyword, qualifier.c_str())) return failed;
    }
    return OAM_SUCCESS;
}

oam_result installKeywords(unsigned long handle, const std::vector<KeywordRule>& rules) {
    for (const auto& rule : rules) {
        if (auto failed = installKeyword(handle, rule)) return failed;
    }
    return OAM_SUCCESS;
}

}  // namespace oam::sim
