// What other rooms may ask of the configuration database, besides the entry points of oam/entry.h.
#pragma once

#include "oam/codes.h"

// Loads every data file; on success the _oamDb entry points run.
oam_result ConfigInit() noexcept;
void ConfigExit() noexcept;

// As _oamDbOpenObject for reading, while the service starts: an object whose file the start has
// just read opens with what it found there, without another look at the file.
oam_result DbOpenObjectAsFound(const char* name, unsigned long* handle) noexcept;

// Creates an object whose kind follows from its name (".bpi", ".emc", "Supervisor", or a board);
// product may be null. OAMERR_ALREADY_EXISTS.
oam_result CreateObject(const char* name, const char* product) noexcept;

// As the entry points of the same names, without the running check. An open that is refused is
// tried 10 times more, one second apart; CloseObject raises no alert of its own.
oam_result OpenObject(unsigned long client, const char* name, unsigned long* handle,
                      unsigned mode) noexcept;
oam_result CloseObject(unsigned long handle) noexcept;
oam_result SetKeyword(unsigned long handle, const char* name, const char* value) noexcept;
oam_result GetKeyword(unsigned long handle, const char* name, char* buffer, unsigned size) noexcept;
oam_result GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                        char* buffer, unsigned size) noexcept;

// Closes (and commits) every handle that a client left open; the last failure.
oam_result OpenObjectsCleanup(unsigned long client) noexcept;
