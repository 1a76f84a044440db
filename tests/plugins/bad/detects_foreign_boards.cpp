// Detects a board of a product that it does not serve.
#include <strings.h>

#include "sound.h"

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    const unsigned int failed = SoundGetKeyword(handle, keyword, buffer, size);
    const bool isProduct =
        keyword != nullptr && strcasecmp(keyword, "DetectedBoards[0].Product") == 0;
    if (!failed && isProduct && buffer != nullptr) buffer[0] = 'X';
    return failed;
}
