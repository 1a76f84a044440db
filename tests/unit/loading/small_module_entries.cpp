// A module of the smallest kind: it exports every entry of a plug-in, which are a component's too,
// notes each call in `calls` and answers `answer`. Copies of its file are modules of their own.
#include <cstdio>
#include <cstring>

#include "oam/message.h"

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED char calls[4096];
EXPORTED unsigned answer;
char calls[4096] = "";
unsigned answer = 0;

namespace {

unsigned note(const char* entry, const char* text = "") {
    const size_t used = strlen(calls);
    snprintf(calls + used, sizeof calls - used, "%s(%s)\n", entry, text);
    return answer;
}

}  // namespace

// Definitions alone: the module sees none of the service's declarations.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

EXPORTED unsigned Init(const char* fileName) { return note("Init", fileName); }
EXPORTED unsigned Exit() { return note("Exit"); }
EXPORTED unsigned DetectBoards() { return note("DetectBoards"); }
EXPORTED unsigned CreateBoard(const char* board, const char*) { return note("CreateBoard", board); }
EXPORTED unsigned DestroyBoard(const char* board) { return note("DestroyBoard", board); }
EXPORTED unsigned OpenObject(unsigned long, unsigned) { return note("OpenObject"); }
EXPORTED unsigned CloseObject(unsigned long) { return note("CloseObject"); }
EXPORTED unsigned SetKeyword(unsigned long, const char* keyword, const char*) {
    return note("SetKeyword", keyword);
}
EXPORTED unsigned GetKeyword(unsigned long, const char* keyword, char*, unsigned) {
    return note("GetKeyword", keyword);
}
EXPORTED unsigned StartBoard(const char* board) { return note("StartBoard", board); }
EXPORTED unsigned StopBoard(const char* board) { return note("StopBoard", board); }
EXPORTED unsigned SendBuffer(const char* board, const void*, unsigned) {
    return note("SendBuffer", board);
}
#if !defined(WITHOUT_OPTIONS)
EXPORTED const char* GetText(unsigned) {
    (void)note("GetText");
    return "text of a small module";
}
EXPORTED unsigned AlertReceive(const oam_msg_tag*) { return note("AlertReceive"); }
EXPORTED unsigned GetBoardStatus(const char* board, unsigned, int* status) {
    *status = 1;
    return note("GetBoardStatus", board);
}
#endif
#if !defined(WITHOUT_TEST_BOARD)
EXPORTED unsigned TestBoard(const char* board, unsigned) { return note("TestBoard", board); }
#endif
#if !defined(WITHOUT_GET_QUALIFIER)
EXPORTED unsigned GetQualifier(unsigned long, const char* keyword, const char*, char*, unsigned) {
    return note("GetQualifier", keyword);
}
#endif
