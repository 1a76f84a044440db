// Compares a keyword's name letter by letter.
#include <cstring>

#include "sound.h"

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    if (keyword != nullptr && std::strcmp(keyword, "GAIN") == 0) return OAMERR_NOT_FOUND;
    return SoundGetKeyword(handle, keyword, buffer, size);
}
