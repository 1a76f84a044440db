// Its product's name ends with a blank, which no data file can keep.
#include <strings.h>

#include <cstring>
#include <initializer_list>

#include "sound.h"

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    const unsigned int failed = SoundGetKeyword(handle, keyword, buffer, size);
    if (failed || buffer == nullptr) return failed;
    for (const char* name : {"Products[0]", "DetectedBoards[0].Product"})
        if (strcasecmp(keyword, name) == 0) buffer[std::strlen(buffer) - 1] = ' ';
    return failed;
}
