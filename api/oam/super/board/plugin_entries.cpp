#include "loading/guarded_call.h"
#include "plugin.h"

using oam::GuardedCall;

oam_result PluginEntries::DetectBoards() const noexcept {
    return GuardedCall({object.mark.module, oam::kDetectBoardsEntry, nullptr}, detectBoards);
}

oam_result PluginEntries::CreateBoard(const char* board, const char* product) const noexcept {
    return GuardedCall({object.mark.module, oam::kCreateBoardEntry, board}, createBoard, board,
                       product);
}

oam_result PluginEntries::DestroyBoard(const char* board) const noexcept {
    return GuardedCall({object.mark.module, oam::kDestroyBoardEntry, board}, destroyBoard, board);
}

oam_result PluginEntries::StartBoard(const char* board) const noexcept {
    return GuardedCall({object.mark.module, oam::kStartBoardEntry, board}, startBoard, board);
}

oam_result PluginEntries::StopBoard(const char* board) const noexcept {
    return GuardedCall({object.mark.module, oam::kStopBoardEntry, board}, stopBoard, board);
}

oam_result PluginEntries::TestBoard(const char* board, unsigned testValue) const noexcept {
    return GuardedCall({object.mark.module, oam::kTestBoardEntry, board}, testBoard, board,
                       testValue);
}

oam_result PluginEntries::SendBuffer(const char* board, const void* buffer,
                                     unsigned length) const noexcept {
    return GuardedCall({object.mark.module, oam::kSendBufferEntry, board}, sendBuffer, board,
                       buffer, length);
}

oam_result PluginEntries::GetBoardStatus(const char* board, unsigned selector,
                                         int* status) const noexcept {
    return GuardedCall({object.mark.module, oam::kGetBoardStatusEntry, board}, getBoardStatus,
                       board, selector, status);
}
