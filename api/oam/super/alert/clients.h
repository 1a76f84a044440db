// The registered alert clients: a sorted table of identifiers under a lock of its own.
//
// The lock is held only while the table changes or is copied, never while a client is called.
#pragma once

#include "korcore/guard.h"
#include "oam/codes.h"
#include "objects/table.h"

// A separately allocated cell, one client.
struct ClientCell {
    unsigned long client;

    static int Compare(const ClientCell& cell, unsigned long client) noexcept {
        return cell.client < client ? -1 : cell.client > client ? 1 : 0;
    }
};

// None of the operations locks; callers hold Mutex().
class CArrayPtrsToClient : private oam::SortedTable<ClientCell, unsigned long> {
  public:
    // Kept: the first argument is ignored; no slots are allocated ahead.
    CArrayPtrsToClient(int initial, int growth) noexcept : SortedTable(initial, growth) {}

    using SortedTable::Capacity;
    using SortedTable::Count;
    using SortedTable::Remove;
    using SortedTable::RemoveAll;

    bool Find(unsigned long client, int* index) const noexcept { return Search(client, index); }
    // OAMERR_ALREADY_EXISTS, OAMERR_NOT_ENOUGH_MEMORY.
    oam_result Insert(unsigned long client) noexcept;
    unsigned long ClientAt(int index) const noexcept { return At(index)->client; }

    CKorMutex& Mutex() noexcept { return mutex_; }

  private:
    CKorMutex mutex_{0, nullptr, 0};
};

// The one table of the service.
CArrayPtrsToClient& alertClients() noexcept;
