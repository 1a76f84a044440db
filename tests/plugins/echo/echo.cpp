#include "echo.h"

#include <atomic>
#include <cstring>

#include "oam/entry.h"

namespace oam::echo {

namespace {

constexpr unsigned kTextSize = 64;

std::atomic<const char*> name{""};
std::atomic<unsigned> heard{0};

void readOwnObject() {
    unsigned long handle = 0;
    if (_oamDbOpenObject(Name(), &handle, OAM_OPEN_READ) != OAM_SUCCESS) return;
    char text[kTextSize];
    (void)_oamDbGetKeyword(handle, "Name", text, sizeof text);
    (void)_oamDbCloseObject(handle);
}

}  // namespace

// Once: a file has one name for as long as it is mapped.
void SetName(const char* fileName) {
    if (*name.load() == '\0') name = strdup(fileName);
}

const char* Name() { return name; }

unsigned HearAndAnswer(const oam_msg_tag* message) {
    if (message->code == kEchoed) return OAM_SUCCESS;  // an answer to every answer has no end
    unsigned number = 0;
    char text[kTextSize];
    const unsigned turn = heard++;
    switch (turn % 8) {
        case 0:
            Raise(kEchoed, oamMessageSource(message), "heard");
            break;
        case 1:
            (void)_oamBoardGetNumber(oamMessageSource(message), &number);
            break;
        case 2:
            (void)_oamDbEnumObjects(static_cast<int>(turn % 5), text, sizeof text);
            break;
        case 3:
            readOwnObject();
            break;
        default:
            break;
    }
    return turn % 64 == 63 ? kUnwell : unsigned{OAM_SUCCESS};
}

void Raise(unsigned code, const char* source, const char* text) {
    struct {
        oam_msg_tag header;
        char source[kTextSize];
        char text[kTextSize];
    } record = {};
    record.header.size = sizeof record;
    record.header.code = code;
    record.header.severity = OAM_WARNING;
    record.header.sourceOffset = sizeof record.header;
    record.header.textOffset = sizeof record.header + kTextSize;
    std::strncpy(record.source, source, kTextSize - 1);
    std::strncpy(record.text, text, kTextSize - 1);
    (void)_oamAlertNotify(&record.header);
}

}  // namespace oam::echo
