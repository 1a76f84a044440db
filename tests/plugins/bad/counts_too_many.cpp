// Promises a second product and does not have it.
#include <strings.h>

#include "sound.h"

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    const unsigned int failed = SoundGetKeyword(handle, keyword, buffer, size);
    const bool isCount = keyword != nullptr && strcasecmp(keyword, "Products.Count") == 0;
    if (!failed && isCount && buffer != nullptr) buffer[0] = '2';
    return failed;
}
