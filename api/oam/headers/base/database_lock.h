// The two long-lived locks, and what each thread holds of them.
//
// The manager lock serialises the configuration database; the board table lock guards the board
// table and is kept over a commit. Order: manager before table. Debug builds abort when a thread
// that holds only the table lock asks for the manager lock.
//
// A thread's holds are counted, for three reasons: an alert raised under one of the locks must not
// wait for a receiver; an open that is retried while its own thread holds the manager lock cannot
// succeed; and a failed board creation leaves the table lock to its thread, which gives it back as
// soon as it asks for either lock again, or ends.
#pragma once

#include "korcore/mutex.h"

namespace oam {

template <class Mutex, int kRank>
class CAPABILITY("mutex") DatabaseLock {
  public:
    void Lock() noexcept ACQUIRE();
    void Unlock() noexcept RELEASE();
    // How often the calling thread holds it.
    static int Depth() noexcept;

  private:
    Mutex mutex_{0};
};

using ManagerMutex = DatabaseLock<CKorLightMutex, 0>;
using TableMutex = DatabaseLock<CKorMutex, 1>;

// The manager's lock and the board table's. Never destroyed.
ManagerMutex& ManagerLock() noexcept;
TableMutex& TableLock() noexcept;

// Whether the calling thread holds either lock.
bool HoldsDatabaseLock() noexcept;

// A frame that may return with the table lock still taken. What the outermost one leaves of it is
// the thread's left-over: the thread gives it back when it next asks for a database lock, or ends.
class LeftOverFrame {
  public:
    LeftOverFrame() noexcept;
    ~LeftOverFrame();
    LeftOverFrame(const LeftOverFrame&) = delete;
    LeftOverFrame& operator=(const LeftOverFrame&) = delete;
};

template <class Lock>
class SCOPED_CAPABILITY LockGuard {
  public:
    explicit LockGuard(Lock& lock) noexcept ACQUIRE(lock) : lock_(lock) { lock_.Lock(); }
    ~LockGuard() RELEASE() { lock_.Unlock(); }
    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;

  private:
    Lock& lock_;
};

// Hold the manager's or the table's lock for a scope.
struct ManagerGuard : LockGuard<ManagerMutex> {
    ManagerGuard() noexcept : LockGuard(ManagerLock()) {}
};
struct TableGuard : LockGuard<TableMutex> {
    TableGuard() noexcept : LockGuard(TableLock()) {}
};

}  // namespace oam
