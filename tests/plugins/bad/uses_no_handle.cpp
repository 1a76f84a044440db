// Does not ask whether an opening has succeeded.
#include "sound.h"

unsigned int StartBoard(const char* board) {
    unsigned long handle = 0;
    if (!_oamDbOpenObject("No such object", &handle, OAM_OPEN_READ))
        (void)_oamDbCloseObject(handle);
    (void)_oamDbGetKeyword(handle, "Gain", nullptr, 0);
    return SoundStartBoard(board);
}
