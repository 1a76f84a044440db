// The glue between board and plug-in objects and their plug-ins. Every access runs under the
// manager lock; the plug-in's entries are copied first, so no lock of this room is held while it
// works, except by BoardDelete.

#include <cstring>

#include "board_store.h"
#include "board_table.h"
#include "doors/board.h"
#include "product.h"
#include "shadow_writer.h"

namespace {

constexpr oam_result kBadName = oam_result(7);  // Kept: a plain number, not one of the codes.

template <class Access>
oam_result accessBoard(const char* board, Access access) noexcept {
    PluginEntries entries;
    if (!getPluginFromBoardName(board, &entries)) return OAMERR_NOT_FOUND;
    entries.object.mark.about = board;
    return access(entries.object);
}

template <class Access>
oam_result accessPlugin(const char* plugin, Access access) noexcept {
    PluginEntries entries;
    if (!plugins().EntriesOf(plugin, &entries)) return OAMERR_NOT_FOUND;
    entries.object.mark.about = plugin;
    return access(entries.object);
}

// What a data file and the paths of keywords can keep.
bool isGoodName(const char* name) noexcept {
    const size_t length = name != nullptr ? strlen(name) : 0;
    return length != 0 && name[0] != ' ' && name[length - 1] != ' ' &&
           strpbrk(name, "<>\\") == nullptr;
}

// The board is named by a copy: the plug-in may rename it meanwhile.
oam_result destroyBoard(const CBoardID& board) noexcept {
    if (board.plugin == nullptr) return OAM_SUCCESS;
    const PluginEntries entries = board.plugin->Calls();
    char name[oam::kNameSize];
    oam::CopyCut(board.Name(), name, sizeof name);
    const oam_result result = entries.DestroyBoard(name);
    return result == OAMERR_NOT_FOUND ? OAM_SUCCESS : result;
}

}  // namespace

oam_result BoardCreate(const char* product, const char* board) noexcept {
    const Product* known = product != nullptr ? products().Find(product) : nullptr;
    if (known == nullptr) return OAMERR_NOT_FOUND;
    const CPlugin* plugin = known->Plugin();
    const PluginEntries entries = plugin->Calls();
    if (auto refused = entries.CreateBoard(board, product)) return refused;
    const oam_result result = boardIDsCreate(board, plugin);
    (void)boardIDsShadowUpdate();
    return result;
}

oam_result BoardDelete(const char* board) noexcept {
    {
        oam::TableGuard hold;
        const CBoardID* found = boardTable().Find(board);
        // Kept: deleting a board that is not in the table succeeds.
        if (found == nullptr) return OAM_SUCCESS;
        const unsigned long identity = found->identity;
        if (auto refused = destroyBoard(*found)) return refused;
        int index;
        if (boardTable().FindByIdentity(identity, &index)) boardTable().RemoveSurely(index);
    }
    (void)boardIDsShadowUpdate();
    return OAM_SUCCESS;
}

oam_result BoardOpen(const char* board, unsigned long handle, unsigned mode) noexcept {
    return accessBoard(board, [=](auto& entries) { return entries.OpenObject(handle, mode); });
}

oam_result BoardClose(const char* board, unsigned long handle) noexcept {
    return accessBoard(board, [=](auto& entries) { return entries.CloseObject(handle); });
}

oam_result BoardSetKeyword(const char* board, unsigned long handle, const char* keyword,
                           const char* value) noexcept {
    if (oam::EqualNoCase(keyword, "Name") && !isGoodName(value)) return kBadName;
    return accessBoard(board,
                       [=](auto& entries) { return entries.SetKeyword(handle, keyword, value); });
}

oam_result BoardGetKeyword(const char* board, unsigned long handle, const char* keyword,
                           char* buffer, unsigned size) noexcept {
    return accessBoard(
        board, [=](auto& entries) { return entries.GetKeyword(handle, keyword, buffer, size); });
}

oam_result BoardSetQualifier(const char*, unsigned long handle, const char* keyword,
                             const char* qualifier, const char* value) noexcept {
    return _oamDbSetQualifier(handle, keyword, qualifier, value);
}

oam_result BoardGetQualifier(const char* board, unsigned long handle, const char* keyword,
                             const char* qualifier, char* buffer, unsigned size) noexcept {
    return accessBoard(board, [=](auto& entries) {
        return entries.GetQualifier(handle, keyword, qualifier, buffer, size);
    });
}

oam_result PluginOpen(const char* plugin, unsigned long handle, unsigned mode) noexcept {
    return accessPlugin(plugin, [=](auto& entries) { return entries.OpenObject(handle, mode); });
}

oam_result PluginClose(const char* plugin, unsigned long handle) noexcept {
    return accessPlugin(plugin, [=](auto& entries) { return entries.CloseObject(handle); });
}

oam_result PluginSetKeyword(const char* plugin, unsigned long handle, const char* keyword,
                            const char* value) noexcept {
    return accessPlugin(plugin,
                        [=](auto& entries) { return entries.SetKeyword(handle, keyword, value); });
}

oam_result PluginGetKeyword(const char* plugin, unsigned long handle, const char* keyword,
                            char* buffer, unsigned size) noexcept {
    return accessPlugin(
        plugin, [=](auto& entries) { return entries.GetKeyword(handle, keyword, buffer, size); });
}

oam_result PluginSetQualifier(const char*, unsigned long handle, const char* keyword,
                              const char* qualifier, const char* value) noexcept {
    return _oamDbSetQualifier(handle, keyword, qualifier, value);
}

oam_result PluginGetQualifier(const char* plugin, unsigned long handle, const char* keyword,
                              const char* qualifier, char* buffer, unsigned size) noexcept {
    return accessPlugin(plugin, [=](auto& entries) {
        return entries.GetQualifier(handle, keyword, qualifier, buffer, size);
    });
}
