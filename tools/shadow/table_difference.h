// What has changed from one state of the table to the next.
//
// A board is the same board when its number is the same: that is what a rename keeps. A board whose
// number is gone, but whose name stands at a number that is new, was given another number.
#pragma once

#include <string>
#include <vector>

#include "shadow_table.h"

namespace oam::shadow {

enum class Change { kAdded, kRemoved, kRenamed, kChanged, kVxPlugin };

struct Difference {
    Change change;
    Board before{};                // empty for an added board
    Board after{};                 // empty for a removed one
    bool isUsingVxPlugin = false;  // of kVxPlugin, which concerns no board

    bool operator==(const Difference&) const = default;
};

// Removed boards first, then what changed in those that stayed, then added ones. A board that was
// renamed and otherwise changed gives one difference of each kind.
std::vector<Difference> differences(const Table& before, const Table& after);

}  // namespace oam::shadow
