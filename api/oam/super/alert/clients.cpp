#include "clients.h"

#include "base/forever.h"
#include "oam/entry.h"

// What is shown is stored with release and read with acquire: who sees something of a change sees
// its odd turn too, or a later one.
void ClientsInSight::Show(const unsigned long* clients, int count) noexcept {
    const unsigned turn = turn_.load(std::memory_order_relaxed);
    turn_.store(turn + 1, std::memory_order_relaxed);
    count_.store(count, std::memory_order_release);
    for (int i = 0; i < count; ++i) clients_[i].store(clients[i], std::memory_order_release);
    turn_.store(turn + 2, std::memory_order_release);
}

void ClientsInSight::ShowNone() noexcept { Show(nullptr, kTooMany); }

bool ClientsInSight::Copy(unsigned long* clients, int* count) const noexcept {
    const unsigned turn = turn_.load(std::memory_order_acquire);
    const int known = count_.load(std::memory_order_acquire);
    if (turn % 2 != 0 || known == kTooMany) return false;
    for (int i = 0; i < known; ++i) clients[i] = clients_[i].load(std::memory_order_acquire);
    if (turn_.load(std::memory_order_relaxed) != turn) return false;
    *count = known;
    return true;
}

oam_result CArrayPtrsToClient::Insert(unsigned long client) noexcept {
    const oam_result result =
        InsertNew(client, [client] { return new (std::nothrow) ClientCell{client}; });
    if (result == OAM_SUCCESS) ShowAll();
    return result;
}

oam_result CArrayPtrsToClient::Remove(unsigned long client) noexcept {
    const oam_result result = SortedTable::Remove(client);
    if (result == OAM_SUCCESS) ShowAll();
    return result;
}

void CArrayPtrsToClient::RemoveAll() noexcept {
    SortedTable::RemoveAll();
    ShowAll();
}

void CArrayPtrsToClient::ShowAll() noexcept {
    unsigned long clients[ClientsInSight::kMost];
    int count = 0;
    for (int i = 0; i < Count(); ++i) {
        if (ClientAt(i) == OAM_INTERNAL_CLIENT) continue;
        if (count == ClientsInSight::kMost) return inSight_.ShowNone();
        clients[count++] = ClientAt(i);
    }
    inSight_.Show(clients, count);
}

CArrayPtrsToClient& alertClients() noexcept {
    static oam::Forever<CArrayPtrsToClient> s_apClients(0, oam::kTableGrowth);
    return s_apClients.Get();
}
