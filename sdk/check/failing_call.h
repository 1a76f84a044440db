// While it lives, one database call that an entry makes on this thread fails: the one with the
// given number, counted from 1.
#pragma once

#include "module_kind.h"

namespace oam::check {

class FailingCall {
  public:
    FailingCall(Entry entry, int number);
    ~FailingCall();
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;

    // The function that failed; null when the entry made fewer calls.
    const char* Failed() const { return failed_; }

    // Asked by every database function before it works.
    static bool IsDue(const char* function);

  private:
    Entry entry_;
    int remaining_;
    const char* failed_ = nullptr;
};

}  // namespace oam::check
