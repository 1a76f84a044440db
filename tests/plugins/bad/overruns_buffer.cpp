// Closes the text one byte behind the buffer, to be sure.
#include "sound.h"

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    const unsigned int failed = SoundGetKeyword(handle, keyword, buffer, size);
    if (!failed && buffer != nullptr) buffer[size] = '\0';
    return failed;
}
