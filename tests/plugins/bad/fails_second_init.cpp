// Counts on being loaded anew for every start.
#include "sound.h"

unsigned int Init(const char* fileName) {
    static bool isUsed = false;
    if (isUsed) return OAMERR_PLUGIN_INIT_FAIL;
    isUsed = true;
    return SoundInit(fileName);
}
