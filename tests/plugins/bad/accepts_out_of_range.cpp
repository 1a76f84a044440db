// Stores what it is given, whatever the qualifiers say.
#include <cstring>

#include "sound.h"

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    if (keyword == nullptr || value == nullptr || std::strcmp(keyword, "Gain") != 0 ||
        std::strchr(value, '<') != nullptr || std::strlen(value) > 2000)
        return SoundSetKeyword(handle, keyword, value);
    return _oamDbSetKeyword(handle, keyword, value);
}
