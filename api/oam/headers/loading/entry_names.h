// The entries of plug-ins and components, as the marks of calls name them.
#pragma once

#include "korcore/call_marks.h"

namespace oam {

constexpr KorEntryName kInitEntry = {0, "Init"};
constexpr KorEntryName kExitEntry = {1, "Exit"};
constexpr KorEntryName kGetTextEntry = {2, "GetText"};
constexpr KorEntryName kAlertReceiveEntry = {3, "AlertReceive"};
constexpr KorEntryName kOpenObjectEntry = {4, "OpenObject"};
constexpr KorEntryName kCloseObjectEntry = {5, "CloseObject"};
constexpr KorEntryName kSetKeywordEntry = {6, "SetKeyword"};
constexpr KorEntryName kGetKeywordEntry = {7, "GetKeyword"};
constexpr KorEntryName kGetQualifierEntry = {8, "GetQualifier"};
constexpr KorEntryName kDetectBoardsEntry = {9, "DetectBoards"};
constexpr KorEntryName kCreateBoardEntry = {10, "CreateBoard"};
constexpr KorEntryName kDestroyBoardEntry = {11, "DestroyBoard"};
constexpr KorEntryName kStartBoardEntry = {12, "StartBoard"};
constexpr KorEntryName kStopBoardEntry = {13, "StopBoard"};
constexpr KorEntryName kTestBoardEntry = {14, "TestBoard"};
constexpr KorEntryName kSendBufferEntry = {15, "SendBuffer"};
constexpr KorEntryName kGetBoardStatusEntry = {16, "GetBoardStatus"};

// Whose entries they are, and which object the present calls are about; for the marks alone.
struct ModuleMark {
    unsigned module = 0;          // KorMarkedModule
    const char* about = nullptr;  // valid while this copy of the entries is called
};

}  // namespace oam
