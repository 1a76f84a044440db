// The inside of an OperationBook, for its own sources alone.
#pragma once

#include <algorithm>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "operations/operation_book.h"
#include "zol/zol.h"

namespace oam::server {

inline bool isSameName(const std::string& left, const std::string& right) {
    return zolStricmp(left.c_str(), right.c_str()) == 0;
}

struct OperationBook::Entry {
    OperationRecord record;  // final when isConcluded
    OperationId id;
    std::string idForAlert;          // made early: an outcome must not need memory
    std::vector<std::string> names;  // of the board: the one asked for first, the present one last
    std::vector<std::pair<std::uint64_t, Done>> waits;
    Entries::iterator place;
    bool isConcluded = false;  // with its sequence number
    bool isChanged = false;
    // This entry's node, here or, while it is changed, in the book's list; so that to note a change
    // needs no memory.
    Changes unchanged{this};
    Changes::iterator change = unchanged.begin();

    Entry() = default;
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

    bool IsOn(const std::string& board) const {
        return std::any_of(names.begin(), names.end(),
                           [&](const std::string& name) { return isSameName(name, board); });
    }
    // A text that there is no memory for is left out; what happened is not.
    void SetText(std::string_view text) noexcept {
        try {
            record.text = text;
        } catch (const std::bad_alloc&) {
            record.text.clear();
        }
    }
};

// The waits of one operation that are over, to be called without the mutex.
struct OperationBook::Ending {
    std::shared_ptr<Entry> entry;
    std::vector<std::pair<std::uint64_t, Done>> waits;

    // One that throws, for want of memory, must not keep the others from theirs.
    void Call() const noexcept {
        for (const auto& [number, done] : waits) {
            try {
                done(entry->record);
            } catch (const std::exception&) {
            }
        }
    }
};

}  // namespace oam::server
