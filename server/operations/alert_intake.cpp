#include "operations/alert_intake.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <string>
#include <utility>

#include "alert_inbox.h"
#include "store/moment.h"

namespace oam::server {
namespace {

std::string textAt(const oam_msg_tag& message, std::uint32_t offset) {
    std::string text = RecordText(message, offset);
    text.resize(std::min(text.size(), kLongestAlertText));
    text.shrink_to_fit();
    return text;
}

}  // namespace

StoredAlert ReadAlert(const oam_msg_tag& message) {
    StoredAlert alert;
    alert.time = MomentNow();
    alert.code = message.code;
    alert.severity = message.severity;
    alert.source = textAt(message, message.sourceOffset);
    alert.text = textAt(message, message.textOffset);
    return alert;
}

std::uint64_t TakeIn(StoredAlert alert, OperationBook& operations, AlertRing& ring) noexcept {
    const std::string ended = operations.OnAlert(alert);
    try {
        alert.operation = ended;
    } catch (const std::bad_alloc&) {
        // The operation has the alert's number, if not the other way round.
    }
    const std::uint64_t number = ring.Publish(std::move(alert));
    if (!ended.empty()) operations.Number(ended, number);
    return number;
}

}  // namespace oam::server
