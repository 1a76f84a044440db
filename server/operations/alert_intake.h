// An alert on its way from the service into the daemon: it ends the operation whose outcome it is,
// gets its number and lies in the ring. Runs on the service's threads, at times with the service's
// locks held.
#pragma once

#include <cstddef>
#include <cstdint>

#include "alerts/alert_ring.h"
#include "alerts/stored_alert.h"
#include "oam/message.h"
#include "operations/operation_book.h"

namespace oam::server {

// The service's own texts are shorter than 256 bytes. A plug-in's record may hold anything; what is
// longer is cut, so that the bounds on the number of alerts are bounds on memory and disk too.
constexpr std::size_t kLongestAlertText = 4096;

// The record, without a number. std::bad_alloc.
StoredAlert ReadAlert(const oam_msg_tag& message);

// Waits for nobody, throws nothing; the alert's number. When memory runs out something of the alert
// is missing, but neither its number nor the end of the operation's waits.
std::uint64_t TakeIn(StoredAlert alert, OperationBook& operations, AlertRing& ring) noexcept;

}  // namespace oam::server
