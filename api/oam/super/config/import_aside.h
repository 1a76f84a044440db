// The old data files during an import.
//
// Before an import deletes anything, every data file is linked (or copied) into a directory that
// then gets the name "import-aside" in one step: from there on a restart restores the old
// configuration from it. When the import has ended, one more rename takes that back: the new
// configuration stands and the directory is removed, or the import was refused and the old files
// stay in "import-refused", where the operator finds them. Restoring only reads the directory, so a
// death in the middle of it costs nothing; the next start restores again.
#pragma once

#include "oam/codes.h"

// The configuration directory comes without a trailing slash. Runs under the manager lock.

// OAMERR_FILE_WRITE_ERROR or OAMERR_NOT_ENOUGH_MEMORY: nothing has changed.
oam_result setDataFilesAside(const char* directory) noexcept;
// The new configuration stands. False when that could not be recorded: the next start would restore
// the old one.
bool dropDataFilesAside(const char* directory) noexcept;
// The import was refused; replaces what an earlier refused import left.
void keepDataFilesAside(const char* directory) noexcept;
// At start-up: undoes an import that did not end, and tidies up after one that did. False when the
// old files could not be restored; they are still set aside, and the next start tries again.
bool rollBackImport(const char* directory) noexcept;
