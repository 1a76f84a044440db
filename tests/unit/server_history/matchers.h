// What history tests expect of a change.
#pragma once

#include <gmock/gmock.h>

#include <optional>
#include <string>

#include "history/history_book.h"

namespace oam::server::test {

inline auto Changed(const std::string& keyword, std::optional<std::string> oldValue,
                    std::optional<std::string> newValue) {
    using ::testing::AllOf;
    using ::testing::Field;
    return AllOf(Field("keyword", &KeywordChange::keyword, keyword),
                 Field("oldValue", &KeywordChange::oldValue, oldValue),
                 Field("newValue", &KeywordChange::newValue, newValue));
}

// "created Board 1", "deleted Board 1", "changed Board 1", "changed Board 2 (was Board 1)"
inline std::string TextOf(const ObjectChange& change) {
    using Kind = ObjectDifference::Kind;
    const char* const what = change.kind == Kind::kCreated   ? "created "
                             : change.kind == Kind::kDeleted ? "deleted "
                                                             : "changed ";
    return what + change.object + (change.previous.empty() ? "" : " (was " + change.previous + ")");
}

// The same of the differences between two states.
inline std::string TextOf(const ObjectDifference& found) {
    return TextOf(ObjectChange{found.object, {}, {}, found.kind, {}, {}});
}

template <class Changes>
std::vector<std::string> TextsOf(const Changes& changes) {
    std::vector<std::string> texts;
    for (const auto& change : changes) texts.push_back(TextOf(change));
    return texts;
}

}  // namespace oam::server::test
