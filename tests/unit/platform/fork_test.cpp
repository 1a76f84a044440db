// What a child of fork finds of its parent's named locks.
#include <gtest/gtest.h>

#include <optional>
#include <thread>

#include "child_process.h"
#include "korcore/mutex.h"
#include "lock_steps.h"
#include "shared_directory.h"

namespace {

class MutexAcrossFork : public SharedDirectory {
  protected:
    CKorMutex mutex_{0, "lock"};
};

TEST_F(MutexAcrossFork, IsNotTheChildsWhenTheParentHoldsIt) {
    ASSERT_TRUE(take(mutex_));
    ChildProcess child([&] {
        if (take(mutex_, 0)) return 1;
        giveBack(mutex_);
        return take(mutex_, 20) ? 2 : 0;
    });
    EXPECT_EQ(0, child.Await());
    EXPECT_FALSE(othersCanTake(mutex_));
    giveBack(mutex_);
    EXPECT_TRUE(othersCanTake(mutex_));
}

TEST_F(MutexAcrossFork, ComesToTheChildWhenTheParentGivesItBack) {
    ASSERT_TRUE(take(mutex_));
    Baton refused;
    ChildProcess child([&] {
        if (take(mutex_, 0)) return 1;
        refused.Pass();
        if (!take(mutex_, 30000)) return 2;
        if (!take(mutex_, 0)) return 3;
        giveBack(mutex_);
        giveBack(mutex_);
        return 0;
    });
    ASSERT_TRUE(refused.Await());
    giveBack(mutex_);
    EXPECT_EQ(0, child.Await());
    EXPECT_TRUE(othersCanTake(mutex_));
}

TEST_F(MutexAcrossFork, ComesToTheChildWhenAnotherThreadOfTheParentHeldIt) {
    Baton taken, release;
    std::thread holder([&] {
        EXPECT_TRUE(take(mutex_));
        taken.Pass();
        EXPECT_TRUE(release.Await());
        giveBack(mutex_);
    });
    ASSERT_TRUE(taken.Await());
    ChildProcess child([&] {
        if (take(mutex_, 0)) return 1;
        release.Pass();
        return take(mutex_, 30000) ? 0 : 2;
    });
    EXPECT_EQ(0, child.Await());
    holder.join();
}

TEST_F(MutexAcrossFork, StaysWithTheParentWhenTheChildDestroysItsObjects) {
    std::optional<CKorMutex> another(std::in_place, 0, "another");
    ASSERT_TRUE(take(*another));
    ChildProcess child([&] {
        another.reset();
        return 0;
    });
    EXPECT_EQ(0, child.Await());
    EXPECT_FALSE(othersCanTake(*another));
    giveBack(*another);
}

TEST_F(MutexAcrossFork, GoesToTheNextWhenTheChildDiesWithIt) {
    Baton taken, never;
    ChildProcess child([&] {
        if (!take(mutex_)) return 1;
        taken.Pass();
        return never.Await() ? 2 : 3;
    });
    ASSERT_TRUE(taken.Await());
    EXPECT_FALSE(take(mutex_, 0));
    child.Kill();
    EXPECT_TRUE(take(mutex_, 30000));
    giveBack(mutex_);
}

}  // namespace
