// Opens the board's object at its start and never closes it.
#include "sound.h"

unsigned int StartBoard(const char* board) {
    unsigned long handle = 0;
    if (auto failed = _oamDbOpenObject(board, &handle, OAM_OPEN_READ)) return failed;
    return SoundStartBoard(board);
}
