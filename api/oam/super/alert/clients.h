// The registered alert clients: a sorted table of identifiers under a lock of its own.
//
// The lock is held only while the table changes or is copied, never while a client is called. Few
// clients, as nearly everywhere, are copied without it: every alert does that.
#pragma once

#include <atomic>

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

// The clients that an alert goes to, for who holds no lock. A change is noticed by its turn, which
// is odd meanwhile.
class ClientsInSight {
  public:
    static constexpr int kMost = 32;

    // By one thread at a time.
    void Show(const unsigned long* clients, int count) noexcept;
    // More than kMost.
    void ShowNone() noexcept;
    // False when they are changing now, or are too many; `clients` has room for kMost.
    bool Copy(unsigned long* clients, int* count) const noexcept;

  private:
    static constexpr int kTooMany = -1;

    std::atomic<unsigned> turn_{0};
    std::atomic<int> count_{0};
    std::atomic<unsigned long> clients_[kMost]{};
};

// Callers hold Mutex(), but for InSight.
class CArrayPtrsToClient : private oam::SortedTable<ClientCell, unsigned long> {
  public:
    // Kept: the first argument is ignored; no slots are allocated ahead.
    CArrayPtrsToClient(int initial, int growth) noexcept : SortedTable(initial, growth) {}

    using SortedTable::Capacity;
    using SortedTable::Count;

    bool Find(unsigned long client, int* index) const noexcept { return Search(client, index); }
    // OAMERR_ALREADY_EXISTS, OAMERR_NOT_ENOUGH_MEMORY.
    oam_result Insert(unsigned long client) noexcept;
    // OAMERR_NOT_FOUND, OAMERR_NOT_ENOUGH_MEMORY.
    oam_result Remove(unsigned long client) noexcept;
    void RemoveAll() noexcept;
    unsigned long ClientAt(int index) const noexcept { return At(index)->client; }

    // All but OAM_INTERNAL_CLIENT, which is called by itself.
    const ClientsInSight& InSight() const noexcept { return inSight_; }

    CKorMutex& Mutex() noexcept { return mutex_; }

  private:
    void ShowAll() noexcept;

    CKorMutex mutex_{0, nullptr, 0};
    ClientsInSight inSight_;
};

// The one table of the service.
CArrayPtrsToClient& alertClients() noexcept;
