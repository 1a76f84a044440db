// Does not look at what the database answers.
#include "sound.h"

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    const unsigned int failed = SoundSetKeyword(handle, keyword, value);
    return failed == OAMERR_SET_BOARD_KEYWORD_FAIL ? failed : OAM_SUCCESS;
}
