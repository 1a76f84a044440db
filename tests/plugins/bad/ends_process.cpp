// Ends the host when its self-test fails.
#include <cstdlib>

#include "sound.h"

unsigned int TestBoard(const char* board, unsigned int test) {
    if (test > 1) std::exit(3);
    return SoundTestBoard(board, test);
}
