// Answers the part of a text that fits.
#include <cstdio>

#include "sound.h"

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    char text[4096];
    if (buffer == nullptr || size == 0 || SoundGetKeyword(handle, keyword, text, sizeof text))
        return SoundGetKeyword(handle, keyword, buffer, size);
    std::snprintf(buffer, size, "%s", text);
    return OAM_SUCCESS;
}
