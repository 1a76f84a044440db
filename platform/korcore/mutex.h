// Re-entrant locks.
//
// CKorLightMutex lives in its object. CKorMutex is the same without a name; with a name it is one
// lock for every process that uses the name in the same shared-memory directory, and robust: when
// its owner dies, the next one gets it and goes on.
//
// Both count their owner's nesting in the process, so an Unlock gives back one Lock; an Unlock by a
// thread that does not hold the lock does nothing. Time-outs are milliseconds; kKorForever waits
// without limit, 0 only tries.
#pragma once

#include <pthread.h>

#include "korcore/annotations.h"

#define KOR_API __attribute__((visibility("default")))

constexpr unsigned kKorForever = 0xFFFFFFFF;

class KorNamedLock;

class CAPABILITY("mutex") KOR_API CKorLightMutex {
  public:
    explicit CKorLightMutex(int reserved = 0) noexcept;
    ~CKorLightMutex();
    CKorLightMutex(const CKorLightMutex&) = delete;
    CKorLightMutex& operator=(const CKorLightMutex&) = delete;

    // False when the time ran out.
    bool Lock(unsigned timeout = kKorForever) noexcept TRY_ACQUIRE(true);
    void Unlock() noexcept RELEASE();

  private:
    pthread_mutex_t mutex_;
};

class CAPABILITY("mutex") KOR_API CKorMutex {
  public:
    // A named lock is a file "<name>" in the shared-memory directory (korcore/shared_file.h), made
    // for owner and group only. `name` null or empty: a lock of this object alone.
    //
    // All objects of one process on the same file are one lock, so they nest in each other. The
    // file stays when the last object goes; an object that goes while its lock is held by the
    // calling thread and no other object is left gives the lock back. A child of fork holds none
    // of its parent's locks.
    explicit CKorMutex(int reserved = 0, const char* name = nullptr, int flags = 0) noexcept;
    ~CKorMutex();
    CKorMutex(const CKorMutex&) = delete;
    CKorMutex& operator=(const CKorMutex&) = delete;

    // False when the time ran out, or when IsUsable() is false.
    bool Lock(unsigned timeout = kKorForever) noexcept TRY_ACQUIRE(true);
    void Unlock() noexcept RELEASE();

    // Lock and Unlock for a hold of microseconds, in which nothing waits. A lock that was free is
    // given back without another look at its file, which costs a system call.
    bool LockBriefly() noexcept TRY_ACQUIRE(true);
    void UnlockBriefly() noexcept RELEASE();

    // False when the shared file of a named lock could not be made, attached or trusted (no room,
    // no permission, not a lock of ours), or has been cut short since.
    bool IsUsable() const noexcept;

  private:
    CKorLightMutex own_;
    KorNamedLock* shared_ = nullptr;
    bool named_;
};
