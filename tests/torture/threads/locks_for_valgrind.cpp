// Helgrind does not know pthread_mutex_clocklock, with which the platform's locks wait: it would
// miss that the lock is taken. Under valgrind it is shown pthread_mutex_timedlock instead, which
// differs only when the time of day is set.
#include <dlfcn.h>
#include <pthread.h>

#include <cerrno>
#include <ctime>

#include "support/watchdog.h"

namespace {

using ClockLock = int(pthread_mutex_t*, clockid_t, const timespec*);

constexpr long kNanoseconds = 1000000000;

timespec timeOfDay(clockid_t clock, const timespec& end) {
    timespec now{};
    timespec today{};
    clock_gettime(clock, &now);
    clock_gettime(CLOCK_REALTIME, &today);
    timespec result{today.tv_sec + end.tv_sec - now.tv_sec,
                    today.tv_nsec + end.tv_nsec - now.tv_nsec};
    for (; result.tv_nsec < 0; result.tv_nsec += kNanoseconds) --result.tv_sec;
    for (; result.tv_nsec >= kNanoseconds; result.tv_nsec -= kNanoseconds) ++result.tv_sec;
    return result;
}

}  // namespace

// Before the C library's own, for every library of the process.
extern "C" __attribute__((visibility("default"))) int pthread_mutex_clocklock(
    pthread_mutex_t* mutex, clockid_t clock, const timespec* end) noexcept {
    static const bool isUnderValgrind = oam::torture::IsUnderValgrind();
    if (isUnderValgrind) {
        const timespec today = timeOfDay(clock, *end);
        return pthread_mutex_timedlock(mutex, &today);
    }
    static const auto real =
        reinterpret_cast<ClockLock*>(dlsym(RTLD_NEXT, "pthread_mutex_clocklock"));
    return real(mutex, clock, end);
}
