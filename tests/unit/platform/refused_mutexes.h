// A system without room for a mutex between processes: the program's own pthread_mutex_init stands
// before the C library's, for the platform's libraries as well.
#pragma once

// For its life the n-th making of such a mutex (1 is the next) and all behind it are refused.
class SharedMutexesRefused {
  public:
    explicit SharedMutexesRefused(int from = 1);
    ~SharedMutexesRefused();
    SharedMutexesRefused(const SharedMutexesRefused&) = delete;
    SharedMutexesRefused& operator=(const SharedMutexesRefused&) = delete;

    bool HasHappened() const;
};
