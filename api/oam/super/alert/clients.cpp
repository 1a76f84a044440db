#include "clients.h"

#include "base/forever.h"

oam_result CArrayPtrsToClient::Insert(unsigned long client) noexcept {
    return InsertNew(client, [client] { return new (std::nothrow) ClientCell{client}; });
}

CArrayPtrsToClient& alertClients() noexcept {
    static oam::Forever<CArrayPtrsToClient> s_apClients(0, oam::kTableGrowth);
    return s_apClients.Get();
}
