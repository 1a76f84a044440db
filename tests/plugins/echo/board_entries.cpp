// The entries that only the plug-in has: every operation succeeds, and tells of itself meanwhile.
#include "echo.h"
#include "oam/plugin.h"

using namespace oam::echo;

namespace {

unsigned tell(const char* board, const char* what) {
    unsigned number = 0;
    (void)_oamBoardGetNumber(board, &number);
    Raise(kEchoed, board, what);
    return OAM_SUCCESS;
}

}  // namespace

unsigned int DetectBoards() { return OAM_SUCCESS; }

unsigned int CreateBoard(const char* boardName, const char*) { return tell(boardName, "created"); }

unsigned int DestroyBoard(const char* boardName) { return tell(boardName, "destroyed"); }

unsigned int StartBoard(const char* boardName) { return tell(boardName, "started"); }

unsigned int StopBoard(const char* boardName) { return tell(boardName, "stopped"); }

unsigned int TestBoard(const char* boardName, unsigned int) { return tell(boardName, "tested"); }

unsigned int SendBuffer(const char* boardName, const void*, unsigned int) {
    return tell(boardName, "sent");
}

unsigned int GetBoardStatus(const char*, unsigned int, int* status) {
    if (status != nullptr) *status = 0;
    return OAM_SUCCESS;
}
