// Never fills its count in.
#include <strings.h>

#include <cstdio>

#include "sound.h"

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    const char* const kCount = "2000000000";
    if (keyword == nullptr || strcasecmp(keyword, "DetectedBoards.Count") != 0)
        return SoundGetKeyword(handle, keyword, buffer, size);
    if (buffer == nullptr) return OAM_SUCCESS;
    if (size <= 10) return OAMERR_NOT_ENOUGH_MEMORY;
    std::snprintf(buffer, size, "%s", kCount);
    return OAM_SUCCESS;
}
