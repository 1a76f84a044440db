// Takes a question without a buffer for a mistake.
#include "sound.h"

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    if (buffer == nullptr) return OAMERR_NOT_FOUND;
    return SoundGetKeyword(handle, keyword, buffer, size);
}
