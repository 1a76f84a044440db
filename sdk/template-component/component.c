/* A component to begin with: it counts the errors among the alerts, and answers the number. */
#include <stdatomic.h>
#include <stdio.h>
#include <string.h>
#include <strings.h>

#include "oam/component.h"

static const char errors[] = "Errors.Seen";
static atomic_uint seen;

unsigned int Init(const char* fileName) {
    unsigned long h;
    unsigned int failed = _oamDbOpenObject(fileName, &h, OAM_OPEN_WRITE | OAM_OPEN_PROVIDER);
    if (failed) return failed;
    failed = _oamDbSetKeyword(h, errors, "0"); /* for those who list the keywords */
    if (!failed) failed = _oamDbSetQualifier(h, errors, "ReadOnly", "Yes");
    const unsigned int closed = _oamDbCloseObject(h);
    return failed ? failed : closed;
}
unsigned int Exit(void) { return 0; }
const char* GetText(unsigned int code) { return 0; }

/* On any thread: it takes no lock and calls nobody. */
unsigned int AlertReceive(const oam_msg_tag* message) {
    if (message->severity > OAM_WARNING) atomic_fetch_add(&seen, 1);
    return 0;
}

unsigned int OpenObject(unsigned long h, unsigned int mode) { return 0; }
unsigned int CloseObject(unsigned long h) { return 0; }
unsigned int SetKeyword(unsigned long h, const char* keyword, const char* value) {
    return OAMERR_ACCESS_DENIED;
}
unsigned int GetKeyword(unsigned long h, const char* keyword, char* buffer, unsigned int size) {
    char text[16];
    if (!keyword || strcasecmp(keyword, errors)) return _oamDbGetKeyword(h, keyword, buffer, size);
    const unsigned int length = (unsigned int)sprintf(text, "%u", atomic_load(&seen));
    if (!buffer) return 0;
    if (length >= size) return OAMERR_NOT_ENOUGH_MEMORY;
    memcpy(buffer, text, length + 1);
    return 0;
}
unsigned int GetQualifier(unsigned long h, const char* keyword, const char* qualifier, char* buffer,
                          unsigned int size) {
    return keyword && qualifier ? _oamDbGetQualifier(h, keyword, qualifier, buffer, size)
                                : OAMERR_NOT_FOUND;
}
