#include "dispatch.h"

#include <memory>

#include "base/flags.h"
#include "base/forever.h"
#include "base/last_failure.h"
#include "board_trace.h"
#include "clients.h"
#include "doors/board.h"
#include "doors/emc.h"
#include "lane.h"
#include "log_file.h"
#include "report.h"

namespace {

std::atomic<bool> s_bAlertIsRunning{false};
std::atomic<oam_alert_callback> s_callback{nullptr};

// How deep a thread's alerts may nest when receivers raise alerts themselves.
constexpr int kMostNested = 32;
thread_local int nested = 0;

class Nesting {
  public:
    Nesting() noexcept { ++nested; }
    ~Nesting() { --nested; }
    bool IsTooDeep() const noexcept { return nested > kMostNested; }
};

ReceiverLane& componentLane() noexcept {
    static oam::Forever<ReceiverLane> lane(&EmcAlertReceive);
    return lane.Get();
}

ReceiverLane& pluginLane() noexcept {
    static oam::Forever<ReceiverLane> lane(&BoardCommAlertReceive);
    return lane.Get();
}

oam_result writeLog(const oam_msg_tag* message) noexcept {
    if (!alertLog().IsOpen()) return OAM_SUCCESS;
    if (!g_bOammonLog) return writePlainLine(message);
    FormatOammonLog(message);
    return OAM_SUCCESS;
}

// Few enough clients take no memory.
struct ClientCopy {
    static constexpr int kFew = ClientsInSight::kMost;

    unsigned long* MakeRoom(int needed) noexcept {
        if (needed <= kFew) return few;
        many.reset(new (std::nothrow) unsigned long[static_cast<size_t>(needed)]);
        return many.get();
    }

    unsigned long few[kFew];
    std::unique_ptr<unsigned long[]> many;
    const unsigned long* clients = nullptr;
    int count = 0;
};

// Copied first, so that no client is called under the table's lock and a registration in between
// does not change who gets this alert.
oam_result copyClients(ClientCopy* copy) noexcept {
    CArrayPtrsToClient& table = alertClients();
    if (table.InSight().Copy(copy->few, &copy->count)) {
        copy->clients = copy->few;
        return OAM_SUCCESS;
    }
    KorGuard hold(table.Mutex());
    unsigned long* clients = copy->MakeRoom(table.Count());
    if (clients == nullptr) return OAMERR_NOT_ENOUGH_MEMORY;
    copy->clients = clients;
    for (int i = 0; i < table.Count(); ++i) {
        const unsigned long client = table.ClientAt(i);
        if (client != OAM_INTERNAL_CLIENT) clients[copy->count++] = client;
    }
    return OAM_SUCCESS;
}

void callClients(const oam_msg_tag* message, oam::LastFailure* result) noexcept {
    const oam_alert_callback callback = alertCallback();
    if (callback == nullptr) return;
    result->Note(oam_result(callback(OAM_INTERNAL_CLIENT, message)));
    ClientCopy copy;
    result->Note(copyClients(&copy));
    for (int i = 0; i < copy.count; ++i) {
        result->Note(oam_result(callback(copy.clients[i], message)));
    }
}

}  // namespace

void setDispatchRunning(bool running) noexcept { s_bAlertIsRunning = running; }

void setAlertCallback(oam_alert_callback callback) noexcept { s_callback = callback; }

oam_alert_callback alertCallback() noexcept { return s_callback; }

oam_result dispatchAlert(const oam_msg_tag* message) noexcept {
    const Nesting nesting;
    if (nesting.IsTooDeep()) return OAMERR_ACCESS_DENIED;
    oam::LastFailure result;
    result.Note(writeLog(message));
    if (!s_bAlertIsRunning) return OAMERR_SERVER_NOT_RUNNING;
    if (message->code == OAMEVN_REPORT) {
        result.Note(reportAppend(message));
        return result.Get();
    }
    if (EmcReceivesAlerts()) result.Note(componentLane().Deliver(message));
    result.Note(pluginLane().Deliver(message));
    callClients(message, &result);
    return result.Get();
}
