#include "library/service_host.h"

#include <exception>
#include <optional>
#include <utility>

#include "oam/entry.h"
#include "operations/alert_intake.h"

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

void ServiceHost::Take(unsigned long client, const oam_msg_tag& message) noexcept {
    if (client == OAM_INTERNAL_CLIENT) alerts_.Note(message.code, message.severity);
    std::optional<StoredAlert> alert;
    try {
        alert = ReadAlert(message);
        if (client != OAM_INTERNAL_CLIENT && toClient_) toClient_(client, *alert);
    } catch (const std::exception&) {
        // No memory. What was for everybody has a number all the same.
    }
    if (client != OAM_INTERNAL_CLIENT) return;
    if (alert)
        TakeIn(std::move(*alert), operations_, ring_);
    else
        ring_.PublishMissing();
}

}  // namespace oam::server
