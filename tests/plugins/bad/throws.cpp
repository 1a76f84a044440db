// Tells a failure by an exception.
#include <stdexcept>

#include "sound.h"

unsigned int StartBoard(const char* board) {
    if (SoundStartBoard(board) == OAM_SUCCESS) throw std::runtime_error("no firmware");
    return OAMERR_START_BOARD_FAIL;
}
