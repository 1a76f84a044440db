// Takes a qualifier's entry for a keyword like any other.
#include <cstring>

#include "sound.h"

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    if (keyword != nullptr && value != nullptr && std::strcmp(keyword, "Gain?Max") == 0)
        return _oamDbSetKeyword(handle, keyword, value);
    return SoundSetKeyword(handle, keyword, value);
}
