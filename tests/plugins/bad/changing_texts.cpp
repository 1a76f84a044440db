// Writes every text into one place.
#include <cstdio>

#include "sound.h"

const char* GetText(unsigned int code) {
    static char text[32];
    if (code < 0x51000001 || code > 0x51000003) return nullptr;
    std::snprintf(text, sizeof text, "DEMO_%u", code - 0x51000000);
    return text;
}
