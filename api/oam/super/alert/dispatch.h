// Dispatch: an alert's way to the log, the report, the components, the plug-ins and the clients.
#pragma once

#include "oam/entry.h"

// Delivery beyond the log happens only while this is on.
void setDispatchRunning(bool running) noexcept;

void setAlertCallback(oam_alert_callback callback) noexcept;
oam_alert_callback alertCallback() noexcept;

// The order is fixed: log, components, plug-ins, the server's callback, then each registered client
// in ascending order. All are called; the result is the last failure.
oam_result dispatchAlert(const oam_msg_tag* message) noexcept;
