// Keyword rules applied to a stored object: installing, repairing and changing keywords.
//
// The values are the user's: they are written only when there is none. The qualifiers are the
// module's: they are written every time, so that a new version's ranges hold for old objects too.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kit/db_access.h"
#include "kit/forever.h"
#include "kit/keyword_rule.h"

namespace oam::kit {

// These three need a handle in read-write and provider mode.
inline oam_result installKeyword(unsigned long handle, const KeywordRule& rule) {
    const auto* const keyword = rule.name.c_str();
    if (rule.value && _oamDbGetKeyword(handle, keyword, nullptr, 0)) {
        if (auto failed = _oamDbSetKeyword(handle, keyword, rule.value->c_str())) return failed;
    }
    for (const auto& [qualifier, value] : qualifiersOf(rule)) {
        if (auto failed = _oamDbSetQualifier(handle, keyword, qualifier.c_str(), value.c_str())) {
            return failed;
        }
    }
    return OAM_SUCCESS;
}

inline oam_result installKeywords(unsigned long handle, const std::vector<KeywordRule>& rules) {
    for (const auto& rule : rules) {
        if (auto failed = installKeyword(handle, rule)) return failed;
    }
    return OAM_SUCCESS;
}

inline oam_result removeKeyword(unsigned long handle, const KeywordRule& rule) {
    const auto* const keyword = rule.name.c_str();
    const auto removed = _oamDbRemoveKeyword(handle, keyword);
    if (removed && removed != OAMERR_NOT_FOUND) return removed;
    for (const auto& [qualifier, value] : qualifiersOf(rule)) {
        (void)_oamDbRemoveQualifier(handle, keyword, qualifier.c_str());
    }
    return OAM_SUCCESS;
}

// Puts the first value in place of stored ones that the rules forbid, which a data file edited by
// hand may hold; each such repair is told in *repairs.
inline oam_result repairKeywords(unsigned long handle, const std::vector<KeywordRule>& rules,
                                 std::vector<std::string>* repairs) {
    for (const auto& rule : rules) {
        const auto stored = readKeyword(handle, rule.name);
        if (!stored || !rule.value || acceptedValue(rule, *stored)) continue;
        if (auto failed = _oamDbSetKeyword(handle, rule.name.c_str(), rule.value->c_str())) {
            return failed;
        }
        repairs->push_back(quoted(rule.name) + " was " + quoted(*stored) + " and is now " +
                           quoted(*rule.value) + ".");
    }
    return OAM_SUCCESS;
}

// May a client make this change? OAMERR_ACCESS_DENIED for what only the module changes,
// OAMERR_SET_BOARD_KEYWORD_FAIL for a name or value that is no good, else 0 and the value to store.
// A keyword without a rule (null) may hold any text that can be kept.
inline oam_result checkChange(const KeywordRule* rule, std::string_view keyword,
                              std::string_view value, std::string* stored) {
    static const auto& kAnyText = forever(KeywordRule());
    if (!canKeepKeyword(keyword)) return OAMERR_SET_BOARD_KEYWORD_FAIL;
    // "Keyword?Qualifier" is how a qualifier is stored; those are the module's.
    if (keyword.find('?') != std::string_view::npos) return OAMERR_ACCESS_DENIED;
    if (rule != nullptr && rule->isReadOnly) return OAMERR_ACCESS_DENIED;
    auto accepted = acceptedValue(rule != nullptr ? *rule : kAnyText, value);
    if (!accepted) return OAMERR_SET_BOARD_KEYWORD_FAIL;
    *stored = std::move(*accepted);
    return OAM_SUCCESS;
}

// The same, and stores it.
inline oam_result changeKeyword(unsigned long handle, const KeywordRule* rule,
                                const std::string& keyword, std::string_view value) {
    std::string stored;
    if (auto refused = checkChange(rule, keyword, value, &stored)) return refused;
    return _oamDbSetKeyword(handle, keyword.c_str(), stored.c_str());
}

}  // namespace oam::kit
