// The service as the judged module sees it: functions of the service's names, which the loader
// finds in this program first.
//
// Each stands in the journal while it runs, so that a module that waits in one is seen; refuses a
// handle that is not open; and can be made to fail. Then the real one does the work.
#include <cstring>
#include <string>

#include "call_journal.h"
#include "entry_call.h"
#include "failing_call.h"
#include "finding.h"
#include "handle_ledger.h"
#include "service.h"
#include "shown.h"

#define CHECK_BOUND __attribute__((visibility("default")))

namespace oam::check {
namespace {

class ServiceCall {
  public:
    explicit ServiceCall(const char* function)
        : record_(Journal().Begin(CallKind::Service, function, WhoCalls())) {}
    ~ServiceCall() { Journal().End(record_); }
    ServiceCall(const ServiceCall&) = delete;
    ServiceCall& operator=(const ServiceCall&) = delete;

  private:
    CallRecord* record_;
};

HandleLedger& ledger() { return HandleLedger::Instance(); }

bool isRefused(const char* function, unsigned long handle,
               bool (HandleLedger::*isGood)(unsigned long) const) {
    // Another one may have the number by now.
    if (ledger().EndedWithService(handle, EntryCall::Current())) return true;
    if ((ledger().*isGood)(handle)) return false;
    Tell(Rule::Handles, WhoCalls(),
         std::string("it calls ") + function + " with a handle that it does not have");
    return true;
}

template <class Function, class... Arguments>
oam_result watched(const char* function, Function real, Arguments... arguments) noexcept {
    const ServiceCall call(function);
    return real(arguments...);
}

template <class Function, class... Arguments>
oam_result watchedDb(const char* function, Function real, unsigned long handle,
                     Arguments... arguments) noexcept {
    const ServiceCall call(function);
    if (isRefused(function, handle, &HandleLedger::IsUsable)) return OAMERR_ACCESS_DENIED;
    if (FailingCall::IsDue(function)) return OAMERR_NOT_ENOUGH_MEMORY;
    return real(handle, arguments...);
}

// Never made to fail: the module could not put the mode back.
template <class Function, class Mode>
oam_result watchedMode(const char* function, Function real, unsigned long handle,
                       Mode mode) noexcept {
    const ServiceCall call(function);
    if (isRefused(function, handle, &HandleLedger::IsUsable)) return OAMERR_ACCESS_DENIED;
    return real(handle, mode);
}

template <class Open>
oam_result watchedOpen(const char* function, const char* object, unsigned long* handle,
                       const Open& open) noexcept {
    const ServiceCall call(function);
    if (FailingCall::IsDue(function)) return OAMERR_ACCESS_DENIED;
    const oam_result failed = open();
    if (!failed) ledger().Opened(*handle, object, EntryCall::Current());
    return failed;
}

// A close that fails has closed all the same.
template <class Function>
oam_result watchedClose(const char* function, Function real, unsigned long handle) noexcept {
    const ServiceCall call(function);
    if (isRefused(function, handle, &HandleLedger::IsClosable)) return OAMERR_ACCESS_DENIED;
    const oam_result failed = real(handle);
    ledger().Closed(handle);
    return FailingCall::IsDue(function) ? OAMERR_FILE_WRITE_ERROR : failed;
}

bool isTextInside(const oam_msg_tag& message, uint32_t offset) {
    if (offset < sizeof message || offset >= message.size) return false;
    const char* text = reinterpret_cast<const char*>(&message) + offset;
    return std::memchr(text, '\0', message.size - offset) != nullptr;
}

bool isWellFormed(const oam_msg_tag* message) {
    return message != nullptr && message->size > sizeof *message &&
           isTextInside(*message, message->sourceOffset) &&
           isTextInside(*message, message->textOffset);
}

// How deep the module may answer alerts, which come back to it, with alerts.
constexpr int kDeepestAnswer = 8;

bool isStorm() {
    if (EntryCall::DepthOf(Entry::AlertReceive) < kDeepestAnswer) return false;
    Tell(Rule::AlertStorm, Entry::AlertReceive,
         "its answer to an alert is an alert, " + std::to_string(kDeepestAnswer) + " times over");
    return true;
}

}  // namespace
}  // namespace oam::check

using namespace oam::check;

#define WATCHED(name, parameters, ...)                                           \
    CHECK_BOUND oam_result _oam##name parameters noexcept {                      \
        return watched("_oam" #name, Service().name __VA_OPT__(, ) __VA_ARGS__); \
    }
#define WATCHED_DB(name, parameters, ...)                            \
    CHECK_BOUND oam_result _oam##name parameters noexcept {          \
        return watchedDb("_oam" #name, Service().name, __VA_ARGS__); \
    }
#define WATCHED_MODE(name, parameters, ...)                            \
    CHECK_BOUND oam_result _oam##name parameters noexcept {            \
        return watchedMode("_oam" #name, Service().name, __VA_ARGS__); \
    }
#define WATCHED_CLOSE(name)                                            \
    CHECK_BOUND oam_result _oam##name(unsigned long handle) noexcept { \
        return watchedClose("_oam" #name, Service().name, handle);     \
    }

extern "C" {

CHECK_BOUND oam_result _oamOpenObject(unsigned long client, const char* name, unsigned long* handle,
                                      unsigned int mode) noexcept {
    return watchedOpen("_oamOpenObject", name, handle,
                       [=] { return Service().OpenObject(client, name, handle, mode); });
}

CHECK_BOUND oam_result _oamDbOpenObject(const char* name, unsigned long* handle,
                                        unsigned int mode) noexcept {
    return watchedOpen("_oamDbOpenObject", name, handle,
                       [=] { return Service().DbOpenObject(name, handle, mode); });
}

WATCHED_CLOSE(CloseObject)
WATCHED_CLOSE(CloseObject_WOAN)
WATCHED_CLOSE(DbCloseObject)

WATCHED_DB(SetKeyword, (unsigned long handle, const char* name, const char* value), handle, name,
           value)
WATCHED_DB(GetKeyword, (unsigned long handle, const char* name, char* buffer, unsigned int size),
           handle, name, buffer, size)
WATCHED_DB(GetQualifier,
           (unsigned long handle, const char* keyword, const char* qualifier, char* buffer,
            unsigned int size),
           handle, keyword, qualifier, buffer, size)
WATCHED_MODE(DbGetProviderMode, (unsigned long handle, bool* provider), handle, provider)
WATCHED_MODE(DbSetProviderMode, (unsigned long handle, bool provider), handle, provider)
WATCHED_DB(DbSetKeyword, (unsigned long handle, const char* name, const char* value), handle, name,
           value)
WATCHED_DB(DbGetKeyword, (unsigned long handle, const char* name, char* buffer, unsigned int size),
           handle, name, buffer, size)
WATCHED_DB(DbRemoveKeyword, (unsigned long handle, const char* name), handle, name)
WATCHED_DB(DbSetQualifier,
           (unsigned long handle, const char* keyword, const char* qualifier, const char* value),
           handle, keyword, qualifier, value)
WATCHED_DB(DbRemoveQualifier, (unsigned long handle, const char* keyword, const char* qualifier),
           handle, keyword, qualifier)
WATCHED_DB(DbGetQualifier,
           (unsigned long handle, const char* keyword, const char* qualifier, char* buffer,
            unsigned int size),
           handle, keyword, qualifier, buffer, size)
WATCHED_DB(DbEnumKeywords, (unsigned long handle, int index, char* buffer, unsigned int size),
           handle, index, buffer, size)

WATCHED(DbEnumObjects, (int index, char* buffer, unsigned int size), index, buffer, size)
WATCHED(ConfigExport, (const char* fileName), fileName)
WATCHED(ConfigImport, (const char* fileName), fileName)
WATCHED(CreateBoard, (const char* product, char* nameBuffer, unsigned int size), product,
        nameBuffer, size)
WATCHED(DeleteBoard, (const char* name), name)
WATCHED(AddDetectedBoard, (const char* name), name)
WATCHED(StartBoard, (const char* name, unsigned int flags), name, flags)
WATCHED(StopBoard, (const char* name, unsigned int flags), name, flags)
WATCHED(TestBoard, (const char* name, unsigned int testValue), name, testValue)
WATCHED(BoardEnum, (int index, char* buffer, unsigned int size), index, buffer, size)
WATCHED(SendBuffer, (const char* name, const void* buffer, unsigned int length), name, buffer,
        length)
WATCHED(BoardGetStatus, (const char* name, unsigned int selector, int* status), name, selector,
        status)
WATCHED(DetectBoards, ())
WATCHED(Init, ())
WATCHED(Exit, ())
WATCHED(Restart, ())

CHECK_BOUND oam_result _oamAlertNotify(const oam_msg_tag* message) noexcept {
    const ServiceCall call("_oamAlertNotify");
    if (!isWellFormed(message)) {
        Tell(Rule::AlertRecord, WhoCalls(),
             message == nullptr ? "a null record"
                                : "a record of " + std::to_string(message->size) + " bytes");
        return OAMERR_ACCESS_DENIED;
    }
    if (isStorm()) return OAMERR_ACCESS_DENIED;
    return Service().AlertNotify(message);
}

}  // extern "C"
