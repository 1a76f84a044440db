// Its product's name cannot be kept in a data file.
#include <strings.h>

#include "sound.h"

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    const unsigned int failed = SoundGetKeyword(handle, keyword, buffer, size);
    const bool isProduct = keyword != nullptr && strcasecmp(keyword, "Products[0]") == 0;
    if (!failed && isProduct && buffer != nullptr) buffer[0] = ' ';
    return failed;
}
