// Gives its boards a keyword with choices, but SetKeyword does not know of such.
#include "sound.h"

unsigned int CreateBoard(const char* board, const char* product) {
    const unsigned int failed = SoundCreateBoard(board, product);
    return failed ? failed
                  : store(board, {{"Clock", "Master"},
                                  {"Clock?Choices.Count", "2"},
                                  {"Clock?Choices[0]", "Master"},
                                  {"Clock?Choices[1]", "Slave"}});
}
