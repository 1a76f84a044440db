// Takes the highest value for one too many.
#include <cstring>

#include "sound.h"

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    if (keyword != nullptr && value != nullptr && std::strcmp(value, "12") == 0)
        return OAMERR_SET_BOARD_KEYWORD_FAIL;
    return SoundSetKeyword(handle, keyword, value);
}
