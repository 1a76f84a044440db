// A plug-in's entries that note themselves at the doors and answer what a test scripts, under
// "p<number>.<entry>". The number tells several plug-ins apart.
#pragma once

#include "board/plugin.h"
#include "doors/doors.h"

namespace oam::test {

template <int kNumber>
struct NotedPlugin {
    static PluginEntries Entries() {
        PluginEntries entries;
        entries.object = {.init = &Init,
                          .exit = &Exit,
                          .getText = &GetText,
                          .alertReceive = &AlertReceive,
                          .openObject = &OpenObject,
                          .closeObject = &CloseObject,
                          .setKeyword = &SetKeyword,
                          .getKeyword = &GetKeyword,
                          .getQualifier = &GetQualifier};
        entries.detectBoards = &DetectBoards;
        entries.createBoard = &CreateBoard;
        entries.destroyBoard = &DestroyBoard;
        entries.startBoard = &StartBoard;
        entries.stopBoard = &StopBoard;
        entries.testBoard = &TestBoard;
        entries.sendBuffer = &SendBuffer;
        entries.getBoardStatus = &GetBoardStatus;
        return entries;
    }

  private:
    template <class... Arguments>
    static unsigned Note(const char* entry, Arguments... arguments) {
        const std::string function = "p" + std::to_string(kNumber) + "." + entry;
        return Doors::The().Call(function.c_str(), arguments...);
    }

    static unsigned Init(const char* fileName) { return Note("Init", fileName); }
    static unsigned Exit() { return Note("Exit"); }
    static const char* GetText(unsigned code) {
        return Note("GetText", code) == 0 ? nullptr : "a text";
    }
    static unsigned AlertReceive(const oam_msg_tag*) { return Note("AlertReceive"); }
    static unsigned DetectBoards() { return Note("DetectBoards"); }
    static unsigned CreateBoard(const char* board, const char* product) {
        return Note("CreateBoard", board, product);
    }
    static unsigned DestroyBoard(const char* board) { return Note("DestroyBoard", board); }
    static unsigned OpenObject(unsigned long handle, unsigned mode) {
        return Note("OpenObject", handle, mode);
    }
    static unsigned CloseObject(unsigned long handle) { return Note("CloseObject", handle); }
    static unsigned SetKeyword(unsigned long handle, const char* keyword, const char* value) {
        return Note("SetKeyword", handle, keyword, value);
    }
    static unsigned GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                               unsigned size) {
        return Note("GetKeyword", handle, keyword, buffer, size);
    }
    static unsigned GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                                 char* buffer, unsigned size) {
        return Note("GetQualifier", handle, keyword, qualifier, buffer, size);
    }
    static unsigned StartBoard(const char* board) { return Note("StartBoard", board); }
    static unsigned StopBoard(const char* board) { return Note("StopBoard", board); }
    static unsigned TestBoard(const char* board, unsigned value) {
        return Note("TestBoard", board, value);
    }
    static unsigned SendBuffer(const char* board, const void*, unsigned length) {
        return Note("SendBuffer", board, length);
    }
    static unsigned GetBoardStatus(const char* board, unsigned selector, int* status) {
        *status = 42;
        return Note("GetBoardStatus", board, selector);
    }
};

}  // namespace oam::test
