// Keeps the handle of the last opened object for later.
#include "sound.h"

namespace {

unsigned long last = 0;

}  // namespace

unsigned int OpenObject(unsigned long handle, unsigned int mode) {
    last = handle;
    return SoundOpenObject(handle, mode);
}

unsigned int StartBoard(const char* board) {
    (void)_oamDbGetKeyword(last, "Gain", nullptr, 0);
    return SoundStartBoard(board);
}
