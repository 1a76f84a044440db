// How long a lock may still be waited for: one end for all the levels of a lock.
#pragma once

#include <pthread.h>
#include <time.h>

class KorDeadline {
  public:
    // Milliseconds from now, as in korcore/mutex.h.
    explicit KorDeadline(unsigned timeout) noexcept;

    // Takes the mutex before the end; the result is that of pthread_mutex_lock or _clocklock, so
    // ETIMEDOUT when the time ran out.
    int Take(pthread_mutex_t* mutex) const noexcept;

  private:
    unsigned timeout_;
    timespec end_{};
};
