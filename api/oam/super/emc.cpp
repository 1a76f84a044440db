// The front of the extended management components: start, stop, alerts, texts, and the access to
// their objects. Components are called without a lock of this room; EMC alerts are one at a time
// because the dispatcher makes them so.

#include "doors/emc.h"

#include <atomic>

#include "base/last_failure.h"
#include "emc/component.h"

namespace {

std::atomic<bool> s_bEmcCommIsRunning{false};

template <class Access>
oam_result accessComponent(const char* name, Access access) noexcept {
    ComponentEntries entries;
    if (!components().EntriesOf(name, &entries)) return OAMERR_NOT_FOUND;
    entries.mark.about = name;
    return access(entries);
}

}  // namespace

oam_result EmcCommInit() noexcept {
    if (auto failed = emcsInit()) {
        EmcCommExit();
        return failed;
    }
    s_bEmcCommIsRunning = true;
    return OAM_SUCCESS;
}

void EmcCommExit() noexcept {
    s_bEmcCommIsRunning = false;
    (void)emcsExit();
}

int EmcsGetCount() noexcept { return components().Count(); }

const char* EmcsGetAt(int index) noexcept { return components().NameAt(index); }

const char* EmcGetText(unsigned code) noexcept {
    const char* text = nullptr;
    components().ForEach([&](const ComponentEntries& entries) {
        if (text == nullptr) text = entries.GetText(code);
    });
    return text;
}

bool EmcReceivesAlerts() noexcept { return s_bEmcCommIsRunning && !components().IsEmpty(); }

oam_result EmcAlertReceive(const oam_msg_tag* message) noexcept {
    if (!s_bEmcCommIsRunning) return OAM_SUCCESS;
    oam::LastFailure result;
    components().ForEach(
        [&](const ComponentEntries& entries) { result.Note(entries.AlertReceive(message)); });
    return result.Get();
}

oam_result EmcOpen(const char* name, unsigned long handle, unsigned mode) noexcept {
    return accessComponent(name, [=](auto& entries) { return entries.OpenObject(handle, mode); });
}

oam_result EmcClose(const char* name, unsigned long handle) noexcept {
    return accessComponent(name, [=](auto& entries) { return entries.CloseObject(handle); });
}

oam_result EmcSetKeyword(const char* name, unsigned long handle, const char* keyword,
                         const char* value) noexcept {
    return accessComponent(
        name, [=](auto& entries) { return entries.SetKeyword(handle, keyword, value); });
}

oam_result EmcGetKeyword(const char* name, unsigned long handle, const char* keyword, char* buffer,
                         unsigned size) noexcept {
    return accessComponent(
        name, [=](auto& entries) { return entries.GetKeyword(handle, keyword, buffer, size); });
}

oam_result EmcSetQualifier(const char*, unsigned long handle, const char* keyword,
                           const char* qualifier, const char* value) noexcept {
    return _oamDbSetQualifier(handle, keyword, qualifier, value);
}

oam_result EmcGetQualifier(const char* name, unsigned long handle, const char* keyword,
                           const char* qualifier, char* buffer, unsigned size) noexcept {
    return accessComponent(name, [=](auto& entries) {
        return entries.GetQualifier(handle, keyword, qualifier, buffer, size);
    });
}
