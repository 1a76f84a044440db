// The _oamDb entry points and those for the whole configuration: check the running flag, take the
// manager lock, call the operation.

#include <atomic>
#include <cstring>

#include "base/flags.h"
#include "config_running.h"
#include "doors/alert.h"
#include "doors/config.h"
#include "kept_keywords.h"
#include "mobjmgr.h"
#include "open_objects.h"
#include "retried_open.h"

namespace {

std::atomic<bool> s_bConfigIsRunning{false};

template <class Operation>
oam_result whileConfigRuns(Operation operation) noexcept {
    if (!s_bConfigIsRunning) return OAMERR_SERVER_NOT_RUNNING;
    oam::ManagerGuard hold;
    return operation();
}

template <class Operation>
oam_result whileOamRuns(Operation operation) noexcept {
    if (!OamIsRunning()) return OAMERR_SERVER_NOT_RUNNING;
    oam::ManagerGuard hold;
    return operation();
}

// The name buffer of a creation that may have failed before it wrote there.
void copyUnterminated(const char* buffer, unsigned size, char (&name)[oam::kNameSize]) noexcept {
    const size_t room = size < sizeof name ? size : sizeof name - 1;
    const size_t length = buffer != nullptr ? strnlen(buffer, room) : 0;
    if (length != 0) memcpy(name, buffer, length);
    name[length] = '\0';
}

}  // namespace

void setConfigRunning(bool running) noexcept { s_bConfigIsRunning = running; }

oam_result _oamDbOpenObject(const char* name, unsigned long* handle, unsigned mode) noexcept {
    if (!s_bConfigIsRunning) return OAMERR_SERVER_NOT_RUNNING;
    if (handle == nullptr) return OAMERR_NOT_FOUND;
    return openRetried(kInternalAttempts, [=] {
        return objMgr().DbOpenObject(OAM_INTERNAL_CLIENT, name, handle, mode);
    });
}

oam_result DbOpenObjectAsFound(const char* name, unsigned long* handle) noexcept {
    if (!s_bConfigIsRunning) return OAMERR_SERVER_NOT_RUNNING;
    return openRetried(kInternalAttempts, [=] {
        const KeptKeywords::Trust trust;
        return objMgr().DbOpenObject(OAM_INTERNAL_CLIENT, name, handle, OAM_OPEN_READ);
    });
}

oam_result _oamDbCloseObject(unsigned long handle) noexcept {
    return whileConfigRuns([=] { return objMgr().DbCloseObject(handle); });
}

oam_result _oamDbGetProviderMode(unsigned long handle, bool* provider) noexcept {
    return whileConfigRuns(
        [=] { return getObjectFromHandle(handle)->DbGetProviderMode(provider); });
}

oam_result _oamDbSetProviderMode(unsigned long handle, bool provider) noexcept {
    return whileConfigRuns(
        [=] { return getObjectFromHandle(handle)->DbSetProviderMode(provider); });
}

oam_result _oamDbSetKeyword(unsigned long handle, const char* name, const char* value) noexcept {
    return whileConfigRuns([=] { return objMgr().DbSetKeyword(handle, name, value); });
}

oam_result _oamDbGetKeyword(unsigned long handle, const char* name, char* buffer,
                            unsigned size) noexcept {
    return whileConfigRuns(
        [=] { return getObjectFromHandle(handle)->DbGetKeyword(name, buffer, size); });
}

oam_result _oamDbRemoveKeyword(unsigned long handle, const char* name) noexcept {
    return whileConfigRuns([=] { return getObjectFromHandle(handle)->DbRemoveKeyword(name); });
}

oam_result _oamDbSetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                              const char* value) noexcept {
    return whileConfigRuns(
        [=] { return getObjectFromHandle(handle)->DbSetQualifier(keyword, qualifier, value); });
}

oam_result _oamDbGetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                              char* buffer, unsigned size) noexcept {
    return whileConfigRuns([=] {
        return getObjectFromHandle(handle)->DbGetQualifier(keyword, qualifier, buffer, size);
    });
}

oam_result _oamDbRemoveQualifier(unsigned long handle, const char* keyword,
                                 const char* qualifier) noexcept {
    return whileConfigRuns(
        [=] { return getObjectFromHandle(handle)->DbRemoveQualifier(keyword, qualifier); });
}

oam_result _oamDbEnumObjects(int index, char* buffer, unsigned size) noexcept {
    return whileConfigRuns([=] { return objMgr().DbEnumObjects(index, buffer, size); });
}

oam_result _oamDbEnumKeywords(unsigned long handle, int index, char* buffer,
                              unsigned size) noexcept {
    return whileConfigRuns([=] { return objMgr().DbEnumKeywords(handle, index, buffer, size); });
}

oam_result _oamConfigExport(const char* fileName) noexcept {
    return whileOamRuns(
        [=] { return fileName != nullptr ? objMgr().Export(fileName) : OAMERR_FILE_WRITE_ERROR; });
}

oam_result _oamConfigImport(const char* fileName) noexcept {
    return whileOamRuns(
        [=] { return fileName != nullptr ? objMgr().Import(fileName) : OAMERR_NOT_FOUND; });
}

oam_result _oamCreateBoard(const char* product, char* nameBuffer, unsigned size) noexcept {
    if (!OamIsRunning()) return OAMERR_SERVER_NOT_RUNNING;
    // Kept: a failure past the plug-in leaves the table lock taken.
    const oam::LeftOverFrame frame;
    oam_result result;
    {
        oam::ManagerGuard hold;
        result = product != nullptr ? objMgr().CreateObjectByProduct(product, nameBuffer, size)
                                    : OAMERR_NOT_FOUND;
    }
    // Kept: raised whatever the result, with what the buffer then holds.
    char name[oam::kNameSize];
    copyUnterminated(nameBuffer, size, name);
    (void)AlertNotify(OAMEVN_CREATED, OAM_INFORMATION, name, "%s", "");
    return result;
}

oam_result _oamDeleteBoard(const char* name) noexcept {
    return whileOamRuns([=] { return objMgr().DeleteObject(name); });
}

oam_result _oamAddDetectedBoard(const char* name) noexcept {
    return whileOamRuns([=] { return objMgr().AddDetectedBoard(name); });
}
