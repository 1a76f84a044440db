// Empties the buffer first, and then finds that the answer does not fit.
#include "sound.h"

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    if (buffer != nullptr && size > 0) buffer[0] = '\0';
    return SoundGetKeyword(handle, keyword, buffer, size);
}
