// The front of the boards: the start and stop of board communication, and what every plug-in is
// asked or told. Start: plug-ins, their products, the board table; stop: the reverse, after the
// boards that are marked for it have been stopped.

#include "doors/board.h"
#include "base/last_failure.h"
#include "board/board_store.h"
#include "board/plugin.h"
#include "board/product.h"
#include "board/workers.h"

oam_result BoardCommInit() noexcept {
    oam_result result = pluginsInit();
    if (result == OAM_SUCCESS) result = productsInit();
    if (result == OAM_SUCCESS) result = boardIDsInit();
    if (result != OAM_SUCCESS) {
        BoardCommExit();
        return result;
    }
    openForRequests();
    startMarkedBoardsLater();
    return OAM_SUCCESS;
}

void BoardCommExit() noexcept {
    (void)_oamStopBoard(nullptr, unsigned{OAM_AUTOMATIC} | unsigned{OAM_SYNCHRONIZED});
    closeForRequests();
    (void)boardIDsExit();
    (void)productsExit();
    (void)pluginsExit();
}

const char* BoardCommGetText(unsigned code) noexcept {
    const char* text = nullptr;
    plugins().ForEach([&](const PluginEntries& entries) {
        if (text == nullptr) text = entries.object.GetText(code);
    });
    return text;
}

oam_result BoardCommAlertReceive(const oam_msg_tag* message) noexcept {
    if (!isOpenForRequests()) return OAM_SUCCESS;
    oam::LastFailure result;
    plugins().ForEach(
        [&](const PluginEntries& entries) { result.Note(entries.object.AlertReceive(message)); });
    return result.Get();
}
