#include "library/service_host.h"

#include "alert_inbox.h"
#include "oam/entry.h"

namespace oam::server {
namespace {

std::atomic<ServiceHost*> theHost{nullptr};

}  // namespace

ServiceHost::ServiceHost(AlertRing& ring, OperationBook& operations)
    : ring_(ring), operations_(operations) {
    theHost = this;
}

ServiceHost::~ServiceHost() {
    Stop();
    (void)_oamAlertRegisterCallback(nullptr);
    theHost = nullptr;
}

unsigned ServiceHost::Start() {
    (void)_oamAlertRegisterCallback(
        [](unsigned long client, const oam_msg_tag* message) { return Receive(client, message); });
    code_ = _oamInit();
    if (code_ == OAM_SUCCESS) started_ = std::chrono::system_clock::now();
    return code_;
}

void ServiceHost::Stop() { (void)_oamExit(); }

bool ServiceHost::IsRunning() const { return g_bOamIsRunning; }

unsigned ServiceHost::Receive(unsigned long client, const oam_msg_tag* message) noexcept {
    if (ServiceHost* const host = theHost) host->Take(client, *message);
    return OAM_SUCCESS;
}

void ServiceHost::Take(unsigned long client, const oam_msg_tag& message) noexcept try {
    StoredAlert alert;
    alert.time = std::chrono::system_clock::now();
    alert.code = message.code;
    alert.severity = message.severity;
    alert.source = RecordText(message, message.sourceOffset);
    alert.text = RecordText(message, message.textOffset);
    if (client != OAM_INTERNAL_CLIENT) {
        if (toClient_) toClient_(client, alert);
        return;
    }
    const std::string ended = operations_.OnAlert(alert);
    alert.operation = ended;
    alert.sequence = ring_.Publish(alert);
    if (!ended.empty()) operations_.Number(ended, alert.sequence);
} catch (const std::exception&) {
    // No memory: the ring counts what it could not keep.
}

}  // namespace oam::server
