// Tells a failure by an exception.
#include <stdexcept>

#include "sound.h"

unsigned int StartBoard(const char* board) {
    if (board[0] == 'D') throw std::runtime_error("no firmware");
    return SoundStartBoard(board);
}
