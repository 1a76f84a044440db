// The front of the configuration database: start, stop, and access to objects by handle, for
// clients and for other rooms. Everything runs under the manager lock; alerts about a change are
// raised after it is released.

#include "doors/config.h"

#include "base/flags.h"
#include "base/last_failure.h"
#include "base/rounds.h"
#include "config/config_running.h"
#include "config/mobjmgr.h"
#include "config/open_objects.h"
#include "config/retried_open.h"
#include "doors/alert.h"

using oam::ManagerGuard;

oam_result ConfigInit() noexcept {
    ManagerGuard hold;
    if (auto failed = objMgr().Init()) return failed;
    setConfigRunning(true);
    return OAM_SUCCESS;
}

void ConfigExit() noexcept {
    setConfigRunning(false);
    ManagerGuard hold;
    openObjects().RemoveAll();
    objMgr().Exit();
}

oam_result CreateObject(const char* name, const char* product) noexcept {
    ManagerGuard hold;
    return objMgr().CreateObject(name, product);
}

namespace {

oam_result openFor(unsigned long client, const char* name, unsigned long* handle, unsigned mode,
                   int attempts) noexcept {
    if (name == nullptr || handle == nullptr) return OAMERR_NOT_FOUND;
    return openRetried(attempts, [=] { return objMgr().OpenObject(client, name, handle, mode); });
}

}  // namespace

oam_result OpenObject(unsigned long client, const char* name, unsigned long* handle,
                      unsigned mode) noexcept {
    return openFor(client, name, handle, mode, kInternalAttempts);
}

oam_result CloseObject(unsigned long handle) noexcept {
    ManagerGuard hold;
    return objMgr().CloseObject(handle);
}

oam_result SetKeyword(unsigned long handle, const char* name, const char* value) noexcept {
    ManagerGuard hold;
    return getObjectFromHandle(handle)->SetKeyword(handle, name, value);
}

oam_result GetKeyword(unsigned long handle, const char* name, char* buffer,
                      unsigned size) noexcept {
    ManagerGuard hold;
    return getObjectFromHandle(handle)->GetKeyword(handle, name, buffer, size);
}

oam_result GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                        char* buffer, unsigned size) noexcept {
    ManagerGuard hold;
    return getObjectFromHandle(handle)->GetQualifier(handle, keyword, qualifier, buffer, size);
}

oam_result OpenObjectsCleanup(unsigned long client) noexcept {
    if (client == OAM_INTERNAL_CLIENT) return OAM_SUCCESS;
    ManagerGuard hold;
    oam::LastFailure result;
    oam::Rounds rounds(openObjects().Count());
    for (int i = 0; i < openObjects().Count();) {
        const OpenMObject* record = openObjects().At(i);
        if (record->client != client) {
            ++i;
            continue;
        }
        if (!rounds.Next()) break;  // its plug-in opens another one for each
        const unsigned long handle = reinterpret_cast<unsigned long>(record);
        DebugOutput("Closing dangling open handle 0x%08lx on object \"%s\" by client 0x%08lx.\n",
                    handle, getNameFromHandle(handle), client);
        const int before = openObjects().Count();
        result.Note(_oamCloseObject(handle));
        // Receivers of the close's alerts may have closed others too: look from the start again.
        i = openObjects().Count() < before ? 0 : i + 1;
    }
    return result.Get();
}

oam_result _oamOpenObject(unsigned long client, const char* name, unsigned long* handle,
                          unsigned mode) noexcept {
    if (!OamIsRunning()) return OAMERR_SERVER_NOT_RUNNING;
    return openFor(client, name, handle, mode,
                   client == OAM_INTERNAL_CLIENT ? kInternalAttempts : 1);
}

oam_result _oamCloseObject(unsigned long handle) noexcept {
    if (!OamIsRunning()) return OAMERR_SERVER_NOT_RUNNING;
    ClosedObject closed;
    {
        ManagerGuard hold;
        if (auto failed = objMgr().CloseObject(handle, &closed)) return failed;
    }
    if (closed.modified) {
        (void)AlertNotify(OAMEVN_MODIFIED, OAM_INFORMATION, closed.name, "%s", "");
    }
    return OAM_SUCCESS;
}

oam_result _oamCloseObject_WOAN(unsigned long handle) noexcept {
    return OamIsRunning() ? CloseObject(handle) : OAMERR_SERVER_NOT_RUNNING;
}

oam_result _oamSetKeyword(unsigned long handle, const char* name, const char* value) noexcept {
    return OamIsRunning() ? SetKeyword(handle, name, value) : OAMERR_SERVER_NOT_RUNNING;
}

oam_result _oamGetKeyword(unsigned long handle, const char* name, char* buffer,
                          unsigned size) noexcept {
    return OamIsRunning() ? GetKeyword(handle, name, buffer, size) : OAMERR_SERVER_NOT_RUNNING;
}

oam_result _oamGetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                            char* buffer, unsigned size) noexcept {
    return OamIsRunning() ? GetQualifier(handle, keyword, qualifier, buffer, size)
                          : OAMERR_SERVER_NOT_RUNNING;
}
