#include "base/database_lock.h"

#include <pthread.h>

#include <cstdio>
#include <cstdlib>

#include "base/forever.h"

namespace oam {
namespace {

constexpr int kManagerRank = 0;
constexpr int kTableRank = 1;

struct ThreadHolds {
    int depth[2] = {0, 0};
    int leftOver = 0;  // of the table lock
    int frames = 0;
    int heldBeforeFrames = 0;

    int TableHoldsInUse() const noexcept { return depth[kTableRank] - leftOver; }
    void LeaveOver() noexcept;
    void GiveBack() noexcept NO_THREAD_SAFETY_ANALYSIS {
        while (leftOver > 0) {
            --leftOver;
            TableLock().Unlock();
        }
    }
};

// Without a destructor: registering one at a thread's first call takes memory, and the process ends
// when there is none.
constinit thread_local ThreadHolds holds;

pthread_key_t threadEnd;
pthread_once_t threadEndMade = PTHREAD_ONCE_INIT;

// Called by every thread that has set its pointer, when it ends.
void giveBackAtEnd(void* ofThread) { static_cast<ThreadHolds*>(ofThread)->GiveBack(); }

void ThreadHolds::LeaveOver() noexcept {
    leftOver += TableHoldsInUse() - heldBeforeFrames;
    if (leftOver == 0) return;
    pthread_once(&threadEndMade, [] { (void)pthread_key_create(&threadEnd, giveBackAtEnd); });
    (void)pthread_setspecific(threadEnd, this);
}

[[maybe_unused]] void checkOrder(int rank) noexcept {
    if (rank == kManagerRank && holds.depth[kTableRank] > 0 && holds.depth[kManagerRank] == 0) {
        fputs("lock order: the manager lock is asked for under the board table lock\n", stderr);
        abort();
    }
}

}  // namespace

template <class Mutex, int kRank>
void DatabaseLock<Mutex, kRank>::Lock() noexcept NO_THREAD_SAFETY_ANALYSIS {
    // Before waiting: what a failed creation left to this thread would otherwise be held while it
    // waits for the manager lock, against the order.
    if (kRank == kManagerRank) {
        // A frame works under the manager lock; without it, what the frame holds of the table lock
        // is what it has left over already.
        if (holds.frames > 0 && holds.depth[kManagerRank] == 0) holds.LeaveOver();
        holds.GiveBack();
    }
#ifndef NDEBUG
    checkOrder(kRank);
#endif
    (void)mutex_.Lock(kKorForever);
    ++holds.depth[kRank];
    if (kRank == kTableRank) holds.GiveBack();
}

template <class Mutex, int kRank>
void DatabaseLock<Mutex, kRank>::Unlock() noexcept NO_THREAD_SAFETY_ANALYSIS {
    --holds.depth[kRank];
    mutex_.Unlock();
}

template <class Mutex, int kRank>
int DatabaseLock<Mutex, kRank>::Depth() noexcept {
    return holds.depth[kRank];
}

template class DatabaseLock<CKorLightMutex, kManagerRank>;
template class DatabaseLock<CKorMutex, kTableRank>;

ManagerMutex& ManagerLock() noexcept {
    static Forever<ManagerMutex> lock;
    return lock.Get();
}

TableMutex& TableLock() noexcept {
    static Forever<TableMutex> lock;
    return lock.Get();
}

bool HoldsDatabaseLock() noexcept { return ManagerMutex::Depth() > 0 || TableMutex::Depth() > 0; }

LeftOverFrame::LeftOverFrame() noexcept {
    if (holds.frames++ == 0) holds.heldBeforeFrames = holds.TableHoldsInUse();
}

LeftOverFrame::~LeftOverFrame() {
    if (--holds.frames == 0) holds.LeaveOver();
}

}  // namespace oam
