// One of its keywords is perhaps read-only.
#include "sound.h"

unsigned int CreateBoard(const char* board, const char* product) {
    const unsigned int failed = SoundCreateBoard(board, product);
    return failed ? failed : store(board, {{"Gain?ReadOnly", "Perhaps"}});
}
