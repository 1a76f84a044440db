// Gives its boards a read-only keyword, but SetKeyword does not know of such.
#include "sound.h"

unsigned int CreateBoard(const char* board, const char* product) {
    const unsigned int failed = SoundCreateBoard(board, product);
    return failed ? failed : store(board, {{"Firmware", "1.0"}, {"Firmware?ReadOnly", "Yes"}});
}
