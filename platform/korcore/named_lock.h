// One named lock as one process sees it, whatever number of CKorMutex objects use it.
//
// It has two levels. The lock in the process is re-entrant and counts; only the first of nested
// locks takes the mutex in the file, and only the last unlock gives it back. So the owner noted in
// the file is never compared with a thread of ours: another process may run in a PID namespace of
// its own, where the same number is another thread.
//
// Both levels are robust: the one in the process against a thread that ends, the one in the file
// against a process that is killed.
#pragma once

#include <pthread.h>

#include <atomic>

#include "korcore/deadline.h"
#include "korcore/shared_file.h"

class KorNamedLock {
  public:
    // The process's lock on the file of this name, or null. Each Attach wants one Detach.
    static KorNamedLock* Attach(const char* name) noexcept;
    void Detach() noexcept;

    bool Lock(unsigned timeout) noexcept;
    void Unlock() noexcept;
    // By the thread that will give it back briefly, or that holds it already.
    bool LockBriefly() noexcept;
    void UnlockBriefly() noexcept;
    bool IsUsable() const noexcept;

  private:
    KorNamedLock() noexcept;
    ~KorNamedLock();

    static KorNamedLock* Share(KorNamedLock* candidate) noexcept;
    static void BeforeFork() noexcept;
    static void AfterForkInParent() noexcept;
    static void AfterForkInChild() noexcept;

    void MakeLevelInProcess() noexcept;
    bool TakeLevelInProcess(const KorDeadline& deadline) noexcept;
    bool TakeLevelInFile(const KorDeadline& deadline) noexcept;
    void ReleaseLevelInFile() noexcept;
    bool GiveBackWhatTheCallerHolds() noexcept;

    KorSharedFile file_;
    pthread_mutex_t inProcess_;
    // Under inProcess_.
    unsigned depth_ = 0;
    pthread_mutex_t* inFile_ = nullptr;
    bool wasFree_ = false;  // when the level in the file was taken
    // The file was cut short while the lock was held. It stays lost.
    std::atomic<bool> lost_{false};
    // Under the registry's mutex.
    unsigned users_ = 1;
    KorNamedLock* next_ = nullptr;
};
