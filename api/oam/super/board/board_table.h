// The board table: every configured board that a loaded plug-in serves, sorted by name.
//
// One instance; every use of it runs under the table lock (base/database_lock.h). A commit of a
// board keeps the lock from its validation until its handling (board/change.h).
#pragma once

#include "base/database_lock.h"
#include "board_values.h"
#include "objects/table.h"
#include "plugin.h"

// What a board is doing, not whether it runs: every operation ends in BOARD_STATE_IDLE.
enum BoardState : unsigned {
    BOARD_STATE_IDLE = 0,
    BOARD_STATE_BEING_STARTED = 1,
    BOARD_STATE_BEING_STOPPED = 2,
    BOARD_STATE_BEING_TESTED = 3,
};

struct CBoardID {
    CBoardID(const char* boardName, const CPlugin* servedBy, BoardValues&& boardValues) noexcept;

    const char* Name() const noexcept { return name.OrEmpty(); }
    static int Compare(const CBoardID& board, const char* boardName) noexcept {
        return zolStricmp(board.Name(), boardName);
    }

    oam::OwnedText name;
    const CPlugin* plugin;  // not owned; gone only after the table is emptied
    BoardValues values;
    unsigned state = BOARD_STATE_IDLE;
    // Unlike the name it never changes, so a worker finds its board after a rename.
    unsigned long identity = 0;
};

class CArrayPtrsToBoardID : public oam::NamedTable<CBoardID> {
  public:
    using NamedTable::NamedTable;

    // The first board, in name order, for which `matches` says so; *index is the count on a miss.
    template <class Matches>
    bool FindFirst(Matches matches, int* index) const noexcept {
        for (*index = 0; *index < Count(); ++*index) {
            if (matches(*At(*index))) return true;
        }
        return false;
    }

    bool FindByNumber(unsigned number, int* index) const noexcept;
    bool FindByDriverIDs(const char* name, const char* boardId, int* index) const noexcept;
    bool FindByBusSlot(unsigned bus, unsigned slot, int* index) const noexcept;
    bool FindByIOAddress(unsigned address, int* index) const noexcept;
    bool FindBySerialNumber(const char* text, int* index) const noexcept;
    bool FindByProduct(const char* text, int* index) const noexcept;
    bool FindByClockMode(const char* text, int* index) const noexcept;
    bool FindByAutoStart(bool on, int* index) const noexcept;
    bool FindByAutoStop(bool on, int* index) const noexcept;
    bool FindByShelfSlot(unsigned shelf, unsigned slot, int* index) const noexcept;
    bool FindByMACAddress(const char* text, int* index) const noexcept;
    bool FindByIdentity(unsigned long identity, int* index) const noexcept;

    // The lowest number that no board has. OAMERR_NOT_ENOUGH_MEMORY.
    oam_result CreateUniqueNumber(unsigned* number) const noexcept;
    // OAMERR_ALREADY_EXISTS for a taken number or name.
    oam_result Insert(const char* name, const CPlugin* plugin, BoardValues&& values) noexcept;
};

// Reached under the table lock only; the one exception is a reader under the manager lock, without
// which nothing changes while the service runs.
CArrayPtrsToBoardID& boardTable() noexcept;

// Whether the plug-in "vxplugin.bpi" is loaded; told to other processes by the shadow.
void setUsingVxPlugin(bool isUsing) noexcept;
bool isUsingVxPlugin() noexcept;
