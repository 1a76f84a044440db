// Taking a lock and giving it back as two steps of a test. The clang analysis wants them in one
// function and in one branch; a test wants to see what lies between.
#pragma once

#include <thread>

#include "korcore/mutex.h"

template <class Mutex>
[[nodiscard]] bool take(Mutex& mutex, unsigned timeout = kKorForever) NO_THREAD_SAFETY_ANALYSIS {
    return mutex.Lock(timeout);
}

template <class Mutex>
void giveBack(Mutex& mutex) NO_THREAD_SAFETY_ANALYSIS {
    mutex.Unlock();
}

template <class Mutex>
[[nodiscard]] bool takeBriefly(Mutex& mutex) NO_THREAD_SAFETY_ANALYSIS {
    return mutex.LockBriefly();
}

template <class Mutex>
void giveBackBriefly(Mutex& mutex) NO_THREAD_SAFETY_ANALYSIS {
    mutex.UnlockBriefly();
}

// Whether another thread of this process gets the lock; it gives it back at once.
template <class Mutex>
bool othersCanTake(Mutex& mutex, unsigned timeout = 0) {
    bool taken = false;
    std::thread([&] {
        taken = take(mutex, timeout);
        if (taken) giveBack(mutex);
    }).join();
    return taken;
}
