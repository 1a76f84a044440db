// Counts the header of its alert and forgets the texts behind it.
#include <cstring>

#include "sound.h"

unsigned int StartBoard(const char* board) {
    struct {
        oam_msg_tag header;
        char texts[16];
    } record = {{sizeof(oam_msg_tag), OAMEVN_ALERT, OAM_WARNING, sizeof(oam_msg_tag),
                 sizeof(oam_msg_tag) + 5, 0},
                "Demo\0is warm"};
    (void)_oamAlertNotify(&record.header);
    return SoundStartBoard(board);
}
