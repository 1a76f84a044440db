// What other rooms may ask of the boards and their plug-ins, besides oam/entry.h.
#pragma once

#include "oam/codes.h"
#include "oam/message.h"

// Loads the plug-ins, collects their products, builds the board table and publishes it; then starts
// the boards marked for it, 5 seconds later, on a thread of its own.
oam_result BoardCommInit() noexcept;
// Stops the boards marked for it, then undoes BoardCommInit. Safe when that never ran.
void BoardCommExit() noexcept;

const char* BoardCommGetText(unsigned code) noexcept;
oam_result BoardCommAlertReceive(const oam_msg_tag* message) noexcept;

// ---- Lists, by position in name order. The index is not checked.

int PluginsGetCount() noexcept;
const char* PluginsGetAt(int index) noexcept;
int ProductsGetCount() noexcept;
const char* ProductsGetAt(int index) noexcept;
int BoardsGetCount() noexcept;
const char* BoardsGetAt(int index) noexcept;
int DetectedBoardsGetCount() noexcept;
// Field 1 name, 2 product, 3 PCI bus, 4 PCI slot; null for any other. The numbers' text is
// overwritten by the calling thread's next call for one.
const char* DetectedBoardsGetAt(int index, int field) noexcept;

// ---- Object access, passed to the board's or the named plug-in; OAMERR_NOT_FOUND when unknown.

oam_result BoardCreate(const char* product, const char* board) noexcept;
oam_result BoardDelete(const char* board) noexcept;
oam_result BoardOpen(const char* board, unsigned long handle, unsigned mode) noexcept;
oam_result BoardClose(const char* board, unsigned long handle) noexcept;
// The plain number 7 for a "Name" that a data file or a path could not keep.
oam_result BoardSetKeyword(const char* board, unsigned long handle, const char* keyword,
                           const char* value) noexcept;
oam_result BoardGetKeyword(const char* board, unsigned long handle, const char* keyword,
                           char* buffer, unsigned size) noexcept;
oam_result BoardSetQualifier(const char* board, unsigned long handle, const char* keyword,
                             const char* qualifier, const char* value) noexcept;
oam_result BoardGetQualifier(const char* board, unsigned long handle, const char* keyword,
                             const char* qualifier, char* buffer, unsigned size) noexcept;
oam_result PluginOpen(const char* plugin, unsigned long handle, unsigned mode) noexcept;
oam_result PluginClose(const char* plugin, unsigned long handle) noexcept;
oam_result PluginSetKeyword(const char* plugin, unsigned long handle, const char* keyword,
                            const char* value) noexcept;
oam_result PluginGetKeyword(const char* plugin, unsigned long handle, const char* keyword,
                            char* buffer, unsigned size) noexcept;
oam_result PluginSetQualifier(const char* plugin, unsigned long handle, const char* keyword,
                              const char* qualifier, const char* value) noexcept;
oam_result PluginGetQualifier(const char* plugin, unsigned long handle, const char* keyword,
                              const char* qualifier, char* buffer, unsigned size) noexcept;

// ---- The board table's share of a commit. A successful validation keeps the table lock until
// handling or clean-up gives it back. OAMERR_ALREADY_EXISTS for a taken name or number.

oam_result BoardIDsValidateChanges(const char* object, unsigned long handle) noexcept;
void BoardIDsHandleChanges(const char* object) noexcept;
void BoardIDsValidateChangesCleanup() noexcept;
// Checks one database write. Takes no lock.
oam_result BoardIDsValidateSet(const char* object, const char* keyword, const char* value) noexcept;
