#include "loading/guarded_call.h"
#include "plugin.h"

using oam::GuardedCall;

oam_result PluginEntries::DetectBoards() const noexcept { return GuardedCall(detectBoards); }

oam_result PluginEntries::CreateBoard(const char* board, const char* product) const noexcept {
    return GuardedCall(createBoard, board, product);
}

oam_result PluginEntries::DestroyBoard(const char* board) const noexcept {
    return GuardedCall(destroyBoard, board);
}

oam_result PluginEntries::StartBoard(const char* board) const noexcept {
    return GuardedCall(startBoard, board);
}

oam_result PluginEntries::StopBoard(const char* board) const noexcept {
    return GuardedCall(stopBoard, board);
}

oam_result PluginEntries::TestBoard(const char* board, unsigned testValue) const noexcept {
    return GuardedCall(testBoard, board, testValue);
}

oam_result PluginEntries::SendBuffer(const char* board, const void* buffer,
                                     unsigned length) const noexcept {
    return GuardedCall(sendBuffer, board, buffer, length);
}

oam_result PluginEntries::GetBoardStatus(const char* board, unsigned selector,
                                         int* status) const noexcept {
    return GuardedCall(getBoardStatus, board, selector, status);
}
