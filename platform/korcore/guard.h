// Holding a lock for a scope.
#pragma once

#include "korcore/mutex.h"

template <class Mutex>
class SCOPED_CAPABILITY KorGuard {
  public:
    explicit KorGuard(Mutex& mutex) noexcept ACQUIRE(mutex) : mutex_(mutex) { Take(); }
    ~KorGuard() RELEASE() {
        if (held_) mutex_.Unlock();
    }
    KorGuard(const KorGuard&) = delete;
    KorGuard& operator=(const KorGuard&) = delete;

    // False only for a named lock that is not usable: a wait without limit does not fail.
    bool IsHeld() const noexcept { return held_; }

  private:
    void Take() NO_THREAD_SAFETY_ANALYSIS { held_ = mutex_.Lock(); }

    Mutex& mutex_;
    bool held_ = false;
};
