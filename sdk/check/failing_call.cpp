#include "failing_call.h"

#include "entry_call.h"

namespace oam::check {
namespace {

thread_local FailingCall* active = nullptr;

}  // namespace

FailingCall::FailingCall(Entry entry, int number) : entry_(entry), remaining_(number) {
    active = this;
}

FailingCall::~FailingCall() { active = nullptr; }

bool FailingCall::IsDue(const char* function) {
    const EntryCall* call = EntryCall::Current();
    if (active == nullptr || call == nullptr || call->Which() != active->entry_) return false;
    if (active->remaining_ == 0 || --active->remaining_ != 0) return false;
    active->failed_ = function;
    return true;
}

}  // namespace oam::check
