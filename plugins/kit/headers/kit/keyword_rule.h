// A keyword that a module keeps in an object, as one row: its first value, what it may become, and
// the qualifiers that tell clients so.
#pragma once

#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kit/array_name.h"
#include "kit/kept_text.h"

namespace oam::kit {

struct KeywordRule {
    std::string name{};
    std::optional<std::string> value{};  // none: the service stores the keyword
    // "Integer" is a whole number from min to max, "Object" a text fit to name an object.
    std::string type = "String";
    long long min = 0;
    long long max = 0;
    std::vector<std::string> choices{};  // none: any value of the type
    bool isReadOnly = false;             // only the module itself changes it
    std::string description{};
    bool (*fits)(std::string_view value) = nullptr;  // what type and choices cannot say
};

inline KeywordRule numberRule(std::string name, std::optional<long long> value, long long min,
                              long long max, std::string description) {
    KeywordRule rule = {.name = std::move(name),
                        .type = "Integer",
                        .min = min,
                        .max = max,
                        .description = std::move(description)};
    if (value) rule.value = std::to_string(*value);
    return rule;
}

using Qualifiers = std::vector<std::pair<std::string, std::string>>;

inline Qualifiers qualifiersOf(const KeywordRule& rule) {
    Qualifiers qualifiers = {{"Type", rule.type}, {"ReadOnly", rule.isReadOnly ? "Yes" : "No"}};
    if (!rule.description.empty()) qualifiers.emplace_back("Description", rule.description);
    if (rule.type == "Integer") {
        qualifiers.emplace_back("Min", std::to_string(rule.min));
        qualifiers.emplace_back("Max", std::to_string(rule.max));
    }
    if (rule.choices.empty()) return qualifiers;
    qualifiers.emplace_back("Choices.Count", std::to_string(rule.choices.size()));
    for (std::size_t i = 0; i < rule.choices.size(); ++i) {
        qualifiers.emplace_back(elementName("Choices", i), rule.choices[i]);
    }
    return qualifiers;
}

// The value as it is to be stored: a choice as the rule spells it, a number without leading zeros.
// Nothing when the rule forbids it.
inline std::optional<std::string> acceptedValue(const KeywordRule& rule, std::string_view value) {
    if (!canKeepValue(value)) return {};
    if (rule.fits != nullptr && !rule.fits(value)) return {};
    if (rule.type == "Object" && !canNameObject(value)) return {};
    if (rule.type == "Integer") {
        const auto number = boundedNumber(value, rule.min, rule.max);
        return number ? std::make_optional(std::to_string(*number)) : std::nullopt;
    }
    if (rule.choices.empty()) return std::string(value);
    for (const auto& choice : rule.choices) {
        if (sameText(choice, value)) return choice;
    }
    return {};
}

inline const KeywordRule* findRule(const std::vector<KeywordRule>& rules,
                                   std::string_view keyword) {
    const auto found = std::ranges::find_if(
        rules, [&](const KeywordRule& rule) { return sameText(rule.name, keyword); });
    return found == rules.end() ? nullptr : &*found;
}

}  // namespace oam::kit
