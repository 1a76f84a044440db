// Remembers its boards by name and does not hear that one was renamed.
#include <mutex>
#include <set>
#include <string>

#include "sound.h"

namespace {

std::mutex lock;
std::set<std::string> known;

}  // namespace

unsigned int CreateBoard(const char* board, const char* product) {
    const std::lock_guard hold(lock);
    known.insert(board);
    return SoundCreateBoard(board, product);
}

unsigned int StartBoard(const char* board) {
    const std::lock_guard hold(lock);
    return known.count(board) ? SoundStartBoard(board) : OAMERR_NOT_FOUND;
}
