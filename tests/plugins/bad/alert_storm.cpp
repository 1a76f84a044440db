// Tells in an alert that it has received an alert.
#include "sound.h"

unsigned int AlertReceive(const oam_msg_tag*) {
    const struct {
        oam_msg_tag header;
        char texts[16];
    } record = {{sizeof record, OAMEVN_ALERT, OAM_INFORMATION, sizeof(oam_msg_tag),
                 sizeof(oam_msg_tag) + 5, 0},
                "Demo\0received"};
    return _oamAlertNotify(&record.header);
}
