// An array of keywords that a module computes instead of storing them, and its qualifiers.
//
//   Boards               Type "Array"
//   Boards.Count         Type "Integer"
//   Boards[i]            Type "Struct"; "Keywords.Count" and "Keywords[k]" name its members in full
//   Boards[i].Name, ...  what the rows say
//
// A row with an empty name gives the element itself a value: then it is no structure and has no
// members. All of it is read-only. Which elements there are is the caller's: nothing is kept here.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kit/array_name.h"

namespace oam::kit {

// "Keywords.Count" and "Keywords[k]" of something that has these keywords. A module answers them
// for the empty keyword too: that is how clients find what an object computes.
inline std::optional<std::string> keywordListQualifier(const std::vector<std::string>& keywords,
                                                       std::string_view qualifier) {
    if (sameText(qualifier, "Keywords.Count")) return std::to_string(keywords.size());
    const auto place = elementOf(qualifier, "Keywords");
    if (!place || !place->rest.empty() || place->index >= keywords.size()) return {};
    return keywords[place->index];
}

template <class Element>
struct ComputedMember {
    std::string_view name;  // with its dot
    std::string_view type;
    std::string_view description;
    std::string (*get)(const Element& element);
};

template <class Element>
class ComputedArray {
  public:
    using Members = std::span<const ComputedMember<Element>>;

    constexpr ComputedArray(std::string_view name, std::string_view description, Members members)
        : name_(name), description_(description), members_(members) {}

    std::string Name() const { return std::string(name_); }

    bool IsCount(std::string_view keyword) const { return sameText(keyword, countName(name_)); }

    // Whether the keyword is of this family, also when it has no value now.
    bool Holds(std::string_view keyword) const {
        if (!sameText(keyword.substr(0, name_.size()), name_)) return false;
        const auto rest = keyword.substr(name_.size());
        return rest.empty() || rest.front() == '.' || rest.front() == '[';
    }

    // `at(i)` answers an optional element; it is asked for i below the count only.
    template <class At>
    std::optional<std::string> Value(std::string_view keyword, std::size_t count,
                                     const At& at) const {
        if (IsCount(keyword)) return std::to_string(count);
        const auto place = elementOf(keyword, name_);
        if (!place || place->index >= count) return {};
        const auto* const member = FindMember(place->rest);
        if (member == nullptr) return {};
        const std::optional<Element> element = at(place->index);
        if (!element) return {};
        return member->get(*element);
    }

    std::optional<std::string> Qualifier(std::string_view keyword, std::string_view qualifier,
                                         std::size_t count) const {
        const auto facts = FactsOf(keyword, count);
        if (!facts) return {};
        if (sameText(qualifier, "Type")) return std::string(facts->type);
        if (sameText(qualifier, "ReadOnly")) return "Yes";
        if (sameText(qualifier, "Description")) return std::string(facts->description);
        if (facts->members.empty()) return {};
        return keywordListQualifier(facts->members, qualifier);
    }

  private:
    struct Facts {
        std::string_view type;
        std::string_view description;
        std::vector<std::string> members{};
    };

    const ComputedMember<Element>* FindMember(std::string_view name) const {
        for (const auto& member : members_) {
            if (sameText(member.name, name)) return &member;
        }
        return nullptr;
    }

    std::optional<Facts> FactsOf(std::string_view keyword, std::size_t count) const {
        if (sameText(keyword, name_)) return Facts{"Array", description_};
        if (IsCount(keyword)) return Facts{"Integer", "number of elements"};
        const auto place = elementOf(keyword, name_);
        if (!place || place->index >= count) return {};
        if (const auto* const member = FindMember(place->rest)) {
            return Facts{member->type, member->description};
        }
        if (!place->rest.empty()) return {};
        Facts facts{"Struct", description_};
        for (const auto& member : members_) {
            facts.members.push_back(elementName(name_, place->index, member.name));
        }
        return facts;
    }

    std::string_view name_;
    std::string_view description_;
    Members members_;
};

}  // namespace oam::kit
