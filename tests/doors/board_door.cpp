#include "doors/board_door.h"

#include "doors/board.h"
#include "doors/doors.h"
#include "oam/entry.h"

using oam::test::BoardDoor;
using oam::test::Doors;

BoardDoor& BoardDoor::The() {
    static BoardDoor door;
    return door;
}

oam_result BoardCommInit() noexcept { return Doors::The().Call("BoardCommInit"); }
void BoardCommExit() noexcept { (void)Doors::The().Call("BoardCommExit"); }
const char* BoardCommGetText(unsigned) noexcept { return nullptr; }

oam_result BoardCommAlertReceive(const oam_msg_tag* message) noexcept {
    return Doors::The().Call("BoardCommAlertReceive", oamMessageText(message));
}

int PluginsGetCount() noexcept { return Doors::The().ListCount("Plugins"); }
const char* PluginsGetAt(int index) noexcept { return Doors::The().ListAt("Plugins", index); }
int ProductsGetCount() noexcept { return Doors::The().ListCount("Products"); }
const char* ProductsGetAt(int index) noexcept { return Doors::The().ListAt("Products", index); }
int BoardsGetCount() noexcept { return Doors::The().ListCount("Boards"); }
const char* BoardsGetAt(int index) noexcept { return Doors::The().ListAt("Boards", index); }

int DetectedBoardsGetCount() noexcept {
    return static_cast<int>(BoardDoor::The().detected.size());
}

const char* DetectedBoardsGetAt(int index, int field) noexcept {
    const auto& row = BoardDoor::The().detected.at(static_cast<size_t>(index));
    const std::string* const fields[] = {&row.name, &row.product, &row.bus, &row.slot};
    return field >= 1 && field <= 4 ? fields[field - 1]->c_str() : nullptr;
}

oam_result BoardCreate(const char* product, const char* board) noexcept {
    return Doors::The().Call("BoardCreate", product, board);
}

oam_result BoardDelete(const char* board) noexcept {
    return Doors::The().Call("BoardDelete", board);
}

oam_result BoardOpen(const char* board, unsigned long handle, unsigned mode) noexcept {
    return Doors::The().Call("BoardOpen", board, handle, mode);
}

oam_result BoardClose(const char* board, unsigned long handle) noexcept {
    return Doors::The().Call("BoardClose", board, handle);
}

oam_result BoardSetKeyword(const char* board, unsigned long handle, const char* keyword,
                           const char* value) noexcept {
    return Doors::The().Call("BoardSetKeyword", board, handle, keyword, value);
}

oam_result BoardGetKeyword(const char* board, unsigned long handle, const char* keyword,
                           char* buffer, unsigned size) noexcept {
    return Doors::The().Read("BoardGetKeyword", buffer, size, board, handle, keyword);
}

oam_result BoardSetQualifier(const char* board, unsigned long handle, const char* keyword,
                             const char* qualifier, const char* value) noexcept {
    return Doors::The().Call("BoardSetQualifier", board, handle, keyword, qualifier, value);
}

oam_result BoardGetQualifier(const char* board, unsigned long handle, const char* keyword,
                             const char* qualifier, char* buffer, unsigned size) noexcept {
    return Doors::The().Read("BoardGetQualifier", buffer, size, board, handle, keyword, qualifier);
}

oam_result PluginOpen(const char* plugin, unsigned long handle, unsigned mode) noexcept {
    return Doors::The().Call("PluginOpen", plugin, handle, mode);
}

oam_result PluginClose(const char* plugin, unsigned long handle) noexcept {
    return Doors::The().Call("PluginClose", plugin, handle);
}

oam_result PluginSetKeyword(const char* plugin, unsigned long handle, const char* keyword,
                            const char* value) noexcept {
    return Doors::The().Call("PluginSetKeyword", plugin, handle, keyword, value);
}

oam_result PluginGetKeyword(const char* plugin, unsigned long handle, const char* keyword,
                            char* buffer, unsigned size) noexcept {
    return Doors::The().Read("PluginGetKeyword", buffer, size, plugin, handle, keyword);
}

oam_result PluginSetQualifier(const char* plugin, unsigned long handle, const char* keyword,
                              const char* qualifier, const char* value) noexcept {
    return Doors::The().Call("PluginSetQualifier", plugin, handle, keyword, qualifier, value);
}

oam_result PluginGetQualifier(const char* plugin, unsigned long handle, const char* keyword,
                              const char* qualifier, char* buffer, unsigned size) noexcept {
    return Doors::The().Read("PluginGetQualifier", buffer, size, plugin, handle, keyword,
                             qualifier);
}

oam_result BoardIDsValidateChanges(const char* object, unsigned long handle) noexcept {
    return Doors::The().Call("BoardIDsValidateChanges", object, handle);
}

void BoardIDsHandleChanges(const char* object) noexcept {
    (void)Doors::The().Call("BoardIDsHandleChanges", object);
}

void BoardIDsValidateChangesCleanup() noexcept {
    (void)Doors::The().Call("BoardIDsValidateChangesCleanup");
}

oam_result BoardIDsValidateSet(const char* object, const char* keyword,
                               const char* value) noexcept {
    return Doors::The().Call("BoardIDsValidateSet", object, keyword, value);
}

oam_result _oamStopBoard(const char* name, unsigned flags) noexcept {
    return Doors::The().Call("_oamStopBoard", name, flags);
}

oam_result _oamBoardGetNumber(const char* name, unsigned* number) noexcept {
    const oam_result result = Doors::The().Call("_oamBoardGetNumber", name);
    if (result == OAM_SUCCESS) *number = BoardDoor::The().number;
    return result;
}

oam_result _oamBoardLookupByBusSlot(unsigned bus, unsigned slot, char* buffer,
                                    unsigned size) noexcept {
    return Doors::The().Read("_oamBoardLookupByBusSlot", buffer, size, bus, slot);
}
