// Has an empty text for whatever it does not know.
#include "sound.h"

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    const unsigned int failed = SoundGetKeyword(handle, keyword, buffer, size);
    if (failed != OAMERR_NOT_FOUND) return failed;
    if (buffer == nullptr) return OAM_SUCCESS;
    if (size == 0) return OAMERR_NOT_ENOUGH_MEMORY;
    buffer[0] = '\0';
    return OAM_SUCCESS;
}
