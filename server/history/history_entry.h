// What the history tells: who changed what, when, from which value to which.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "history/keyword_changes.h"

namespace oam::server {

// One commit, seen from outside, is one generation, however many objects it touched. Generations
// count from 1 without gaps; generation 0 is before everything.
using Generation = std::uint64_t;

// On whose behalf something changed.
struct Occasion {
    std::string user;
    // "change", "create", "delete", "import", "add", "rollback", "start", "restore". Empty: what
    // happened to each object tells.
    std::string action;
    std::string operation;  // its identity; empty: none
};

struct HistoryEntry {
    std::uint64_t number = 0;  // of the entry; a generation has one for each object
    Generation generation = 0;
    std::chrono::system_clock::time_point time;
    Occasion occasion;
    std::string object;  // its name afterwards; a renamed one's former name is in `changes`
    std::vector<KeywordChange> changes;
};

struct HistoryQuery {
    std::string object{};  // empty: all; else those of the object that has or had this name
    // Only what is older: than this generation, and than this entry, for a page that ended in the
    // middle of a large generation. 0: from the newest.
    Generation beforeGeneration = 0;
    std::uint64_t beforeNumber = 0;
    std::size_t limit = 100;
};

struct ObjectDifference {
    enum class Kind { kChanged, kCreated, kDeleted };
    std::string object;
    Kind kind = Kind::kChanged;
    std::vector<KeywordChange> changes;
};

}  // namespace oam::server
