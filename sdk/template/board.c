/* A board plug-in to begin with: one product, and one pretend board in the chassis. */
#include <stdlib.h>
#include <string.h>

#include "oam/plugin.h"

enum { DEMO_NO_SUCH_TEST = 0x51000001 };

typedef const char* const Row[2]; /* a keyword or "keyword?qualifier", and its value */
static Row own[] = {{"Products.Count", "1"},
                    {"Products[0]", "DEMO-1"},
                    {"DetectedBoards.Count", "1"},
                    {"DetectedBoards[0].Name", "Demo board"},
                    {"DetectedBoards[0].Product", "DEMO-1"},
                    {0}};
static Row ofBoard[] = {
    {"Gain", "0"}, {"Gain?Type", "Integer"}, {"Gain?Min", "0"}, {"Gain?Max", "12"}, {0}};

static unsigned int keep(const char* object, Row* row) {
    unsigned long h;
    unsigned int failed = _oamDbOpenObject(object, &h, OAM_OPEN_WRITE | OAM_OPEN_PROVIDER);
    if (failed) return failed;
    for (; !failed && (*row)[0]; ++row) failed = _oamDbSetKeyword(h, (*row)[0], (*row)[1]);
    const unsigned int closed = _oamDbCloseObject(h);
    return failed ? failed : closed;
}

unsigned int Init(const char* fileName) { return keep(fileName, own); }
unsigned int Exit(void) { return 0; }
const char* GetText(unsigned int code) {
    return code == DEMO_NO_SUCH_TEST ? "DEMO_NO_SUCH_TEST" : 0;
}
unsigned int DetectBoards(void) { return 0; }
unsigned int CreateBoard(const char* board, const char* product) { return keep(board, ofBoard); }
unsigned int DestroyBoard(const char* board) { return 0; }

/* Only Init writes the plug-in's own object. */
unsigned int OpenObject(unsigned long h, unsigned int mode) {
    const int isOwn = !_oamDbGetKeyword(h, "Products.Count", 0, 0);
    return isOwn && (mode & OAM_OPEN_WRITE) ? OAMERR_ACCESS_DENIED : 0;
}
unsigned int CloseObject(unsigned long h) { return 0; }
unsigned int SetKeyword(unsigned long h, const char* keyword, const char* value) {
    char min[16], max[16], *end;
    if (!keyword || !value || strchr(keyword, '?') || strchr(value, '<') || strlen(value) > 2000)
        return OAMERR_SET_BOARD_KEYWORD_FAIL;
    if (_oamDbGetQualifier(h, keyword, "Min", min, sizeof min) ||
        _oamDbGetQualifier(h, keyword, "Max", max, sizeof max))
        return _oamDbSetKeyword(h, keyword, value);
    const long number = strtol(value, &end, 10);
    const int fits = end != value && !*end && number >= atol(min) && number <= atol(max);
    return fits ? _oamDbSetKeyword(h, keyword, value) : OAMERR_SET_BOARD_KEYWORD_FAIL;
}
unsigned int GetKeyword(unsigned long h, const char* keyword, char* buffer, unsigned int size) {
    return _oamDbGetKeyword(h, keyword, buffer, size);
}
unsigned int GetQualifier(unsigned long h, const char* keyword, const char* qualifier, char* buffer,
                          unsigned int size) {
    return keyword && qualifier ? _oamDbGetQualifier(h, keyword, qualifier, buffer, size)
                                : OAMERR_NOT_FOUND;
}

unsigned int StartBoard(const char* board) { return 0; }
unsigned int StopBoard(const char* board) { return 0; }
unsigned int TestBoard(const char* board, unsigned int test) {
    return test ? DEMO_NO_SUCH_TEST : 0;
}
unsigned int SendBuffer(const char* board, const void* buffer, unsigned int length) { return 0; }
