// Answers without the NUL when exactly that is missing.
#include <cstring>

#include "sound.h"

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    char text[4096];
    if (buffer == nullptr || SoundGetKeyword(handle, keyword, text, sizeof text))
        return SoundGetKeyword(handle, keyword, buffer, size);
    if (std::strlen(text) != size) return SoundGetKeyword(handle, keyword, buffer, size);
    std::memcpy(buffer, text, size);
    return OAM_SUCCESS;
}
