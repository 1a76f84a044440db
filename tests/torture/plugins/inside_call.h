// A call of the service from inside an entry: one exported function, on the service's own thread,
// with what an entry has at hand, and the codes that are documented for it.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "oam/entry.h"
#include "oam/shadow.h"
#include "world.h"

namespace oam::torture {

// What an entry has at hand.
struct Inside {
    World& world;
    unsigned long lent;  // the handle that it was given, or 0
};

// Whether the service works on after the call has returned, and may call the entry again then.
enum class Echo { kNone, kLater };

struct InsideCall {
    const char* function;
    const char* what;  // when one function has several rows
    std::function<unsigned(Inside&)> call;
    std::vector<unsigned> codes = {};  // besides success
    Echo echo = Echo::kNone;
};

std::string NameOf(const InsideCall& call);
inline std::ostream& operator<<(std::ostream& out, const InsideCall& call) {
    return out << NameOf(call);
}

// By family. Together they have every exported function.
std::vector<InsideCall> LifecycleCalls();
std::vector<InsideCall> ObjectCalls();
std::vector<InsideCall> DatabaseCalls();
std::vector<InsideCall> ConfigurationCalls();
std::vector<InsideCall> BoardCalls();
std::vector<InsideCall> QueryCalls();
std::vector<InsideCall> ShadowCalls();
std::vector<InsideCall> AllInsideCalls();

constexpr unsigned kNotRunning = OAMERR_SERVER_NOT_RUNNING;
constexpr unsigned kNotFound = OAMERR_NOT_FOUND;
constexpr unsigned kNoMemory = OAMERR_NOT_ENOUGH_MEMORY;
constexpr unsigned kDenied = OAMERR_ACCESS_DENIED;
constexpr unsigned kExists = OAMERR_ALREADY_EXISTS;
constexpr unsigned kUnreadable = OAMERR_FILE_READ_ERROR;
constexpr unsigned kUnwritable = OAMERR_FILE_WRITE_ERROR;

// Uses the lent handle, or one of a board's opened for it, as a provider that may write.
template <class Use>
unsigned OnHandle(Inside& inside, Use use) {
    if (inside.lent != 0) return use(inside.lent);
    unsigned long handle = 0;
    constexpr unsigned kMode = OAM_OPEN_WRITE | OAM_OPEN_PROVIDER;
    if (auto failed = _oamDbOpenObject(kOtherBoard, &handle, kMode)) return failed;
    const unsigned code = use(handle);
    (void)_oamDbCloseObject(handle);
    return code;
}

}  // namespace oam::torture
