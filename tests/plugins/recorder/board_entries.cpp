// The entries that only a plug-in has. RECORDER_WITHOUT_... leaves one out.
#include "oam/plugin.h"
#include "plugins/recorder/call.h"

using oam::test::Called;
using oam::test::CalledScript;
using oam::test::ModuleScript;
using oam::test::Shown;

namespace {

unsigned storeKeywords(const char* board, const ModuleScript& script) {
    if (script.boardKeywords.empty()) return OAM_SUCCESS;
    unsigned long handle = 0;
    constexpr unsigned kMode = OAM_OPEN_WRITE | OAM_OPEN_PROVIDER;
    if (auto failed = _oamDbOpenObject(board, &handle, kMode)) return failed;
    unsigned result = OAM_SUCCESS;
    for (const auto& [name, value] : script.boardKeywords) {
        if (auto failed = _oamDbSetKeyword(handle, name.c_str(), value.c_str())) result = failed;
    }
    if (auto failed = _oamDbCloseObject(handle)) result = failed;
    return result;
}

}  // namespace

unsigned int DetectBoards() {
    const CalledScript script = Called("DetectBoards");
    if (script.answer) return *script.answer;
    return script.detectBoards ? script.detectBoards() : OAM_SUCCESS;
}

unsigned int CreateBoard(const char* boardName, const char* productName) {
    const CalledScript script = Called("CreateBoard", {Shown(boardName), Shown(productName)});
    if (script.answer) return *script.answer;
    if (script.createBoard) return script.createBoard(boardName, productName);
    return storeKeywords(boardName, script);
}

unsigned int DestroyBoard(const char* boardName) {
    const CalledScript script = Called("DestroyBoard", {Shown(boardName)});
    if (script.answer) return *script.answer;
    return script.destroyBoard ? script.destroyBoard(boardName) : OAM_SUCCESS;
}

unsigned int StartBoard(const char* boardName) {
    const CalledScript script = Called("StartBoard", {Shown(boardName)});
    if (script.answer) return *script.answer;
    return script.startBoard ? script.startBoard(boardName) : OAM_SUCCESS;
}

unsigned int StopBoard(const char* boardName) {
    const CalledScript script = Called("StopBoard", {Shown(boardName)});
    if (script.answer) return *script.answer;
    return script.stopBoard ? script.stopBoard(boardName) : OAM_SUCCESS;
}

#ifndef RECORDER_WITHOUT_TEST_BOARD
unsigned int TestBoard(const char* boardName, unsigned int testValue) {
    const CalledScript script = Called("TestBoard", {Shown(boardName), std::to_string(testValue)});
    if (script.answer) return *script.answer;
    return script.testBoard ? script.testBoard(boardName, testValue) : OAM_SUCCESS;
}
#endif

unsigned int SendBuffer(const char* boardName, const void* buffer, unsigned int length) {
    const CalledScript script = Called(
        "SendBuffer", {Shown(boardName), std::string(static_cast<const char*>(buffer), length)});
    if (script.answer) return *script.answer;
    return script.sendBuffer ? script.sendBuffer(boardName, buffer, length) : OAM_SUCCESS;
}

#ifndef RECORDER_WITHOUT_GET_BOARD_STATUS
unsigned int GetBoardStatus(const char* boardName, unsigned int selector, int* status) {
    const CalledScript script =
        Called("GetBoardStatus", {Shown(boardName), std::to_string(selector)});
    if (script.answer) return *script.answer;
    if (script.getBoardStatus) return script.getBoardStatus(boardName, selector, status);
    *status = script.status;
    return OAM_SUCCESS;
}
#endif
