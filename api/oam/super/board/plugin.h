// A loaded board plug-in: its seventeen entries, and the table of all plug-ins.
#pragma once

#include "loading/module.h"
#include "oam/plugin.h"

// A copy of the pointers, good for as long as the process lives: a worker that took one may call it
// while the service stops and forgets the plug-in.
struct PluginEntries {
    oam::ObjectEntries object;
    oam_plugin_detect_boards* detectBoards = nullptr;
    oam_plugin_create_board* createBoard = nullptr;
    oam_plugin_destroy_board* destroyBoard = nullptr;
    oam_plugin_start_board* startBoard = nullptr;
    oam_plugin_stop_board* stopBoard = nullptr;
    oam_plugin_test_board* testBoard = nullptr;
    oam_plugin_send_buffer* sendBuffer = nullptr;
    oam_plugin_get_board_status* getBoardStatus = nullptr;

    const oam::ObjectEntries& Object() const noexcept { return object; }
    bool IsBound() const noexcept { return getBoardStatus != nullptr; }  // the last to be bound
    void SetModule(unsigned number) noexcept { object.mark.module = number; }

    // Each calls its entry; an exception is OAM_REASON_FAILED.
    oam_result DetectBoards() const noexcept;
    oam_result CreateBoard(const char* board, const char* product) const noexcept;
    oam_result DestroyBoard(const char* board) const noexcept;
    oam_result StartBoard(const char* board) const noexcept;
    oam_result StopBoard(const char* board) const noexcept;
    oam_result TestBoard(const char* board, unsigned testValue) const noexcept;
    oam_result SendBuffer(const char* board, const void* buffer, unsigned length) const noexcept;
    oam_result GetBoardStatus(const char* board, unsigned selector, int* status) const noexcept;
};

using CPlugin = oam::Module<PluginEntries>;
using CArrayPtrsToPlugin = oam::ModuleTable<PluginEntries>;

// The one table of the service.
CArrayPtrsToPlugin& plugins() noexcept;

// Load every "*.bpi" of "/lib"; end them all, answering the last failure.
oam_result pluginsInit() noexcept;
oam_result pluginsExit() noexcept;

// The entries of the plug-in that serves a board; false when there is no such board. Takes the
// table lock.
bool getPluginFromBoardName(const char* board, PluginEntries* entries) noexcept;
