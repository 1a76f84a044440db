// The two long-lived locks: nesting, left-over holds, and their order.
#include "base/database_lock.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace oam::test {
namespace {

constexpr std::chrono::seconds kLimit{30};

// Whether another thread can take the lock now or soon. A lock that stays held is shown by
// TakesTheLockOnlyAfter instead, without waiting for time to pass.
template <class Guard>
void ExpectFree() {
    std::promise<void> taken;
    std::thread other([&] {
        const Guard hold;
        taken.set_value();
    });
    const bool isFree = taken.get_future().wait_for(kLimit) == std::future_status::ready;
    EXPECT_TRUE(isFree);
    if (!isFree) abort();  // the other thread would wait for ever
    other.join();
}

// Lets another thread ask for the lock, then does `giveBack`, after which it must get it; it must
// not have had it before.
template <class Guard, class GiveBack>
void ExpectHeldUntil(GiveBack giveBack) {
    std::promise<void> asking;
    std::atomic<bool> givenBack{false};
    bool tooEarly = false;
    std::thread other([&] {
        asking.set_value();
        const Guard hold;
        tooEarly = !givenBack;
    });
    asking.get_future().wait();
    givenBack = true;
    giveBack();
    other.join();
    EXPECT_FALSE(tooEarly);
}

TEST(DatabaseLock, CountsTheHoldsOfItsThread) {
    EXPECT_EQ(ManagerMutex::Depth(), 0);
    {
        const ManagerGuard first;
        const ManagerGuard second;
        EXPECT_EQ(ManagerMutex::Depth(), 2);
        EXPECT_EQ(TableMutex::Depth(), 0);
    }
    EXPECT_EQ(ManagerMutex::Depth(), 0);
}

TEST(DatabaseLock, TellsAThreadOnlyOfItsOwnHolds) {
    EXPECT_FALSE(HoldsDatabaseLock());
    const TableGuard hold;
    EXPECT_TRUE(HoldsDatabaseLock());
    std::thread([] { EXPECT_FALSE(HoldsDatabaseLock()); }).join();
}

TEST(DatabaseLock, EitherLockCounts) {
    {
        const ManagerGuard hold;
        EXPECT_TRUE(HoldsDatabaseLock());
    }
    {
        const TableGuard hold;
        EXPECT_TRUE(HoldsDatabaseLock());
    }
    EXPECT_FALSE(HoldsDatabaseLock());
}

TEST(DatabaseLock, IsHeldUntilTheOutermostHoldEnds) NO_THREAD_SAFETY_ANALYSIS {
    TableLock().Lock();
    TableLock().Lock();
    TableLock().Unlock();
    ExpectHeldUntil<TableGuard>([]() NO_THREAD_SAFETY_ANALYSIS { TableLock().Unlock(); });
}

// ---- What a frame leaves over

// A frame that works under the manager lock and returns with `holds` of the table lock.
void leaveOver(int holds) NO_THREAD_SAFETY_ANALYSIS {
    const LeftOverFrame frame;
    const ManagerGuard manager;
    for (int i = 0; i < holds; ++i) TableLock().Lock();
}

TEST(LeftOver, GoesBackWhenTheThreadAsksForTheManager) {
    leaveOver(1);
    EXPECT_EQ(TableMutex::Depth(), 1) << "kept until the thread asks again";
    {
        const ManagerGuard hold;
        EXPECT_EQ(TableMutex::Depth(), 0);
        EXPECT_EQ(ManagerMutex::Depth(), 1);
    }
    ExpectFree<TableGuard>();
}

TEST(LeftOver, GoesBackWhenTheThreadAsksForTheTable) {
    leaveOver(2);
    EXPECT_EQ(TableMutex::Depth(), 2);
    {
        const TableGuard hold;
        EXPECT_EQ(TableMutex::Depth(), 1) << "the new hold alone";
    }
    EXPECT_EQ(TableMutex::Depth(), 0);
    ExpectFree<TableGuard>();
}

TEST(LeftOver, GoesBackWhenItsThreadEnds) {
    std::thread([] { leaveOver(1); }).join();
    ExpectFree<TableGuard>();
}

TEST(LeftOver, IsStillHeldAgainstOthers) {
    leaveOver(1);
    ExpectHeldUntil<TableGuard>([] { const ManagerGuard hold; });
}

TEST(LeftOver, DoesNotTakeAlongWhatWasHeldBefore) {
    const ManagerGuard manager;
    const TableGuard before;
    leaveOver(1);
    EXPECT_EQ(TableMutex::Depth(), 2);
    { const TableGuard hold; }
    EXPECT_EQ(TableMutex::Depth(), 1) << "the one from before";
}

TEST(LeftOver, OfAFrameInsideAnotherBelongsToTheOuter) NO_THREAD_SAFETY_ANALYSIS {
    {
        const LeftOverFrame outer;
        const ManagerGuard manager;
        leaveOver(1);
        { const TableGuard hold; }
        EXPECT_EQ(TableMutex::Depth(), 1) << "not left over yet: the outer frame may use it";
    }
    EXPECT_EQ(TableMutex::Depth(), 1);
    { const ManagerGuard hold; }
    EXPECT_EQ(TableMutex::Depth(), 0);
}

TEST(LeftOver, OfASecondFailureIsGivenBackToo) {
    leaveOver(1);
    leaveOver(1);
    EXPECT_EQ(TableMutex::Depth(), 1) << "the second frame gave the first one's back";
    { const ManagerGuard hold; }
    EXPECT_EQ(TableMutex::Depth(), 0);
    ExpectFree<TableGuard>();
}

TEST(LeftOver, IsGivenBackInsideTheFrameAfterTheManagerIs) NO_THREAD_SAFETY_ANALYSIS {
    const LeftOverFrame frame;
    {
        const ManagerGuard manager;
        TableLock().Lock();
    }
    { const ManagerGuard manager; }
    EXPECT_EQ(TableMutex::Depth(), 0) << "a receiver of the frame's alert enters the service";
}

TEST(LeftOver, NothingChangesNothing) {
    leaveOver(0);
    const TableGuard hold;
    EXPECT_EQ(TableMutex::Depth(), 1);
}

// ---- Order

TEST(DatabaseLock, TheManagerMayBeTakenAgainUnderTheTable) {
    const ManagerGuard manager;
    const TableGuard table;
    const ManagerGuard again;
    EXPECT_EQ(ManagerMutex::Depth(), 2);
}

#ifndef NDEBUG
TEST(DatabaseLockDeathTest, TheManagerIsNotAskedForUnderTheTableAlone) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            const TableGuard table;
            const ManagerGuard manager;
        },
        "lock order: the manager lock is asked for under the board table lock");
}
#endif

}  // namespace
}  // namespace oam::test
