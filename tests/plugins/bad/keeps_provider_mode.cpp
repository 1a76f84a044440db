// Switches provider mode on and forgets it.
#include "sound.h"

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    (void)_oamDbSetProviderMode(handle, true);
    bool isProvider = false;
    const bool isNew = _oamDbGetKeyword(handle, keyword, nullptr, 0) != OAM_SUCCESS;
    (void)_oamDbGetProviderMode(handle, &isProvider);
    return isNew || !isProvider ? OAMERR_NOT_FOUND : SoundSetKeyword(handle, keyword, value);
}
