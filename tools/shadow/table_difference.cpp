#include "table_difference.h"

#include <algorithm>

#include "object_kind.h"

namespace oam::shadow {
namespace {

struct Pair {
    Board before;
    Board after;
};

// Takes boards that are the same out of both lists.
template <class Same>
void takePairs(std::vector<Board>* before, std::vector<Board>* after, Same same,
               std::vector<Pair>* pairs) {
    std::erase_if(*before, [&](const Board& earlier) {
        const auto later =
            std::ranges::find_if(*after, [&](const Board& board) { return same(earlier, board); });
        if (later == after->end()) return false;
        pairs->push_back({earlier, *later});
        after->erase(later);
        return true;
    });
}

bool differsOtherwise(const Board& before, Board after) {
    after.name = before.name;
    return before != after;
}

}  // namespace

std::vector<Difference> differences(const Table& before, const Table& after) {
    std::vector<Board> removed = before.boards;
    std::vector<Board> added = after.boards;
    std::vector<Pair> stayed;
    takePairs(
        &removed, &added,
        [](const Board& one, const Board& other) { return one.number == other.number; }, &stayed);
    takePairs(
        &removed, &added,
        [](const Board& one, const Board& other) { return SameName(one.name, other.name); },
        &stayed);

    std::vector<Difference> found;
    for (const Board& board : removed) found.push_back({Change::kRemoved, board, {}});
    for (const Pair& pair : stayed) {
        if (pair.before.name != pair.after.name)
            found.push_back({Change::kRenamed, pair.before, pair.after});
        if (differsOtherwise(pair.before, pair.after))
            found.push_back({Change::kChanged, pair.before, pair.after});
    }
    for (const Board& board : added) found.push_back({Change::kAdded, {}, board});
    if (before.isUsingVxPlugin != after.isUsingVxPlugin)
        found.push_back({Change::kVxPlugin, {}, {}, after.isUsingVxPlugin});
    return found;
}

}  // namespace oam::shadow
