#include "korcore/deadline.h"

#include <cerrno>

#include "korcore/mutex.h"

#if defined(__SANITIZE_THREAD__)
#define KOR_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define KOR_THREAD_SANITIZER 1
#endif
#endif

namespace {

constexpr long kNanosecondsPerMillisecond = 1000000;
constexpr long kNanosecondsPerSecond = 1000000000;

#if defined(KOR_THREAD_SANITIZER)
// The thread sanitizer does not know pthread_mutex_clocklock; it is shown a row of tries instead.
int takeUntil(pthread_mutex_t* mutex, const timespec& end) {
    for (;;) {
        const int result = pthread_mutex_trylock(mutex);
        if (result != EBUSY) return result;
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        if (now.tv_sec > end.tv_sec || (now.tv_sec == end.tv_sec && now.tv_nsec >= end.tv_nsec)) {
            return ETIMEDOUT;
        }
        const timespec pause{0, kNanosecondsPerMillisecond};
        nanosleep(&pause, nullptr);
    }
}
#else
// By the monotonic clock: setting the time of day neither cuts a wait short nor prolongs it. Not
// pthread_mutex_trylock when the end is past: in the C library it leaves a mutex locked for ever
// that it finds not recoverable.
int takeUntil(pthread_mutex_t* mutex, const timespec& end) {
    return pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &end);
}
#endif

}  // namespace

KorDeadline::KorDeadline(unsigned timeout) noexcept : timeout_(timeout) {
    // An end at 0 is always past.
    if (timeout == 0 || timeout == kKorForever) return;
    clock_gettime(CLOCK_MONOTONIC, &end_);
    end_.tv_sec += timeout / 1000;
    end_.tv_nsec += static_cast<long>(timeout % 1000) * kNanosecondsPerMillisecond;
    if (end_.tv_nsec >= kNanosecondsPerSecond) {
        end_.tv_nsec -= kNanosecondsPerSecond;
        ++end_.tv_sec;
    }
}

int KorDeadline::Take(pthread_mutex_t* mutex) const noexcept {
    if (timeout_ == kKorForever) return pthread_mutex_lock(mutex);
    return takeUntil(mutex, end_);
}
