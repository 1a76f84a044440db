// Holding a lock for a scope.
#pragma once

#include "korcore/mutex.h"

template <class Mutex>
class SCOPED_CAPABILITY KorGuard {
  public:
    explicit KorGuard(Mutex& mutex) noexcept ACQUIRE(mutex) : mutex_(mutex) { Take(); }
    ~KorGuard() RELEASE() { mutex_.Unlock(); }
    KorGuard(const KorGuard&) = delete;
    KorGuard& operator=(const KorGuard&) = delete;

  private:
    void Take() NO_THREAD_SAFETY_ANALYSIS { (void)mutex_.Lock(); }  // without limit: never fails

    Mutex& mutex_;
};
