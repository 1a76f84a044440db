// Takes every question for a keyword to have a buffer.
#include <cstring>

#include "sound.h"

namespace {

volatile std::size_t longest = 0;

}  // namespace

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    const unsigned int failed = SoundGetKeyword(handle, keyword, buffer, size);
    if (!failed && std::strlen(buffer) > longest) longest = std::strlen(buffer);
    return failed;
}
