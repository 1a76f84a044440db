// Reading several things as one state, where each reading is whole but all of them together are
// not.
//
// The readers of the shadow answer one question a call, and the server may publish a new table
// between two calls. So everything is read in a pass, and then in another one. When the two agree,
// each answer of the first was still true after the last of it was given: what they show is the
// table as it stood between the passes. (Only a table that was changed and changed back meanwhile
// could deceive them, answer by answer.) When they differ, the second is compared with a third.
#pragma once

#include <optional>
#include <utility>

namespace oam::shadow {

// More than this is no coincidence: somebody changes the table without a pause.
inline constexpr int kMostPasses = 100;

// `pass()` answers an optional value, nothing when a pass has seen by itself that the table
// changed. Nothing when no two passes in a row agree.
template <class Pass>
auto readSteady(Pass pass) -> decltype(pass()) {
    auto earlier = pass();
    for (int passes = 1; passes < kMostPasses; ++passes) {
        auto later = pass();
        if (later && later == earlier) return later;
        earlier = std::move(later);
    }
    return std::nullopt;
}

}  // namespace oam::shadow
