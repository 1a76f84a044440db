// Stores what no data file can hold.
#include <cstring>

#include "sound.h"

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    if (keyword != nullptr && value != nullptr && std::strcmp(keyword, "AutoStart") == 0)
        return _oamDbSetKeyword(handle, keyword, value);
    return SoundSetKeyword(handle, keyword, value);
}
