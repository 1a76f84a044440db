/* The alert record.
 *
 * One contiguous block in the machine's byte order: the 24-byte header below, then the source name
 * and the text, each closed by a NUL, at the offsets that the header names. It can be copied as it
 * stands. A receiver's pointer is valid during its call only.
 *
 *   offset  field
 *        0  size          bytes of the whole record: header, source and text with their NULs
 *        4  code          event code, OAMEVN_...
 *        8  severity      OAM_INFORMATION, OAM_WARNING; any other value is an error
 *       12  sourceOffset  where the source name starts; 24 in every record of the service
 *       16  textOffset    where the text starts
 *       20  reserved      no meaning; receivers do not read it
 *
 * Kept: a text formatted to more than 256 characters is cut to 255, but `size` counts all of them.
 * Find the end of a text by its NUL, never by `size`.
 */
#ifndef OAM_MESSAGE_H
#define OAM_MESSAGE_H

#include <stdint.h>

enum { OAM_INFORMATION = 0, OAM_WARNING = 1, OAM_ERROR = 2 };

typedef struct oam_msg_tag {
    uint32_t size;
    uint32_t code;
    uint32_t severity;
    uint32_t sourceOffset;
    uint32_t textOffset;
    uint32_t reserved;
} oam_msg_tag;

/* The name of what raised the alert: an object's name, or a module's such as "DllMain". */
static inline const char* oamMessageSource(const oam_msg_tag* message) {
    return (const char*)message + message->sourceOffset;
}

static inline const char* oamMessageText(const oam_msg_tag* message) {
    return (const char*)message + message->textOffset;
}

#endif
