// The front of the alert system: clients register here, alerts are raised here, and the start-up
// and board trace logs are opened and closed here. Locks: see each of alert/'s files; none of them
// is held while a receiver runs.

#include "doors/alert.h"

#include "alert/clients.h"
#include "alert/dispatch.h"
#include "alert/log_file.h"
#include "alert/record.h"
#include "alert/report.h"

oam_result _oamAlertRegisterCallback(oam_alert_callback callback) noexcept {
    setAlertCallback(callback);
    return OAM_SUCCESS;
}

oam_result _oamAlertRegister(unsigned long client) noexcept {
    if (alertCallback() == nullptr) return OAMERR_NOT_FOUND;
    KorGuard hold(alertClients().Mutex());
    return alertClients().Insert(client);
}

oam_result _oamAlertUnregister(unsigned long client) noexcept {
    KorGuard hold(alertClients().Mutex());
    return alertClients().Remove(client);
}

oam_result _oamAlertNotify(const oam_msg_tag* message) noexcept {
    return message != nullptr ? dispatchAlert(message) : OAMERR_NOT_FOUND;
}

oam_result AlertNotify(unsigned code, unsigned severity, const char* source, const char* format,
                       ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    RecordRoom room;
    AlertRecord large;
    const oam_msg_tag* record =
        makeRecord(&room, &large, code, severity, source, format, arguments);
    va_end(arguments);
    return record != nullptr ? dispatchAlert(record) : OAMERR_NOT_ENOUGH_MEMORY;
}

oam_result AlertInit() noexcept {
    if (auto failed = reportInit()) return failed;
    setDispatchRunning(true);
    return OAM_SUCCESS;
}

void AlertExit() noexcept {
    setDispatchRunning(false);
    KorGuard hold(alertClients().Mutex());
    alertClients().RemoveAll();
}

oam_result AlertLogFileBeg(const char* path) noexcept { return alertLog().Begin(path); }

oam_result AlertLogFileEnd() noexcept { return alertLog().End(); }
