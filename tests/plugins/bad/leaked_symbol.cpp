// Exports a function of its own.
#include "sound.h"

extern "C" __attribute__((visibility("default"))) int demoLineHelper();
extern "C" int demoLineHelper() { return 1; }

unsigned int StartBoard(const char* board) {
    return demoLineHelper() == 1 ? SoundStartBoard(board) : OAMERR_START_BOARD_FAIL;
}
