// Has a text for codes that are not its own.
#include "sound.h"

const char* GetText(unsigned int code) {
    return code == OAMERR_NOT_FOUND ? "Nothing there" : SoundGetText(code);
}
