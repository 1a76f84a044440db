// What CKorLightMutex and a CKorMutex without a name have in common.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

#include "korcore/guard.h"
#include "korcore/mutex.h"
#include "lock_steps.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

template <class Mutex>
class LockOfAnObject : public testing::Test {
  protected:
    Mutex mutex_{0};
};
using Kinds = testing::Types<CKorLightMutex, CKorMutex>;
TYPED_TEST_SUITE(LockOfAnObject, Kinds);

TYPED_TEST(LockOfAnObject, IsGivenBackByAsManyUnlocksAsLocks) {
    ASSERT_TRUE(take(this->mutex_));
    ASSERT_TRUE(take(this->mutex_, 0));
    ASSERT_TRUE(take(this->mutex_, 10));
    giveBack(this->mutex_);
    giveBack(this->mutex_);
    EXPECT_FALSE(othersCanTake(this->mutex_));
    giveBack(this->mutex_);
    EXPECT_TRUE(othersCanTake(this->mutex_));
}

TYPED_TEST(LockOfAnObject, IsWaitedForNoLongerThanAsked) {
    ASSERT_TRUE(take(this->mutex_));
    const auto begin = steady_clock::now();
    EXPECT_FALSE(othersCanTake(this->mutex_, 50));
    EXPECT_GE(steady_clock::now() - begin, milliseconds(50));
    giveBack(this->mutex_);
    EXPECT_TRUE(othersCanTake(this->mutex_, 50));
}

// Whether the end of the wait lies in this second or in the next.
TYPED_TEST(LockOfAnObject, IsHadAtOnceWhenItIsFreeWhateverThePatience) {
    for (const unsigned timeout : {1U, 500U, 999U, 1999U}) {
        ASSERT_TRUE(take(this->mutex_, timeout));
        EXPECT_FALSE(othersCanTake(this->mutex_, 1));
        giveBack(this->mutex_);
    }
}

TYPED_TEST(LockOfAnObject, ComesToAThreadThatWaitsForIt) {
    for (const unsigned timeout : {kKorForever, 30000U}) {
        ASSERT_TRUE(take(this->mutex_));
        std::thread waiting([&] { EXPECT_TRUE(othersCanTake(this->mutex_, timeout)); });
        giveBack(this->mutex_);
        waiting.join();
    }
}

TYPED_TEST(LockOfAnObject, KeepsThreadsApart) {
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 500; ++round) {
                while (!take(this->mutex_, i % 2 == 0 ? kKorForever : 1000U)) {
                }
                const KorGuard nested(this->mutex_);
                ++count;
                giveBack(this->mutex_);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(2000, count);
}

TYPED_TEST(LockOfAnObject, IsHeldByAGuardForItsScope) {
    {
        const KorGuard guard(this->mutex_);
        EXPECT_TRUE(guard.IsHeld());
        EXPECT_FALSE(othersCanTake(this->mutex_));
    }
    EXPECT_TRUE(othersCanTake(this->mutex_));
}

TYPED_TEST(LockOfAnObject, IsNobodyElses) {
    TypeParam other{0};
    const KorGuard held(other);
    EXPECT_TRUE(othersCanTake(this->mutex_));
}

TEST(MutexWithoutAName, IsHeldBrieflyLikeAnyOther) {
    CKorMutex mutex;
    ASSERT_TRUE(takeBriefly(mutex));
    EXPECT_FALSE(othersCanTake(mutex));
    giveBackBriefly(mutex);
    EXPECT_TRUE(othersCanTake(mutex));
}

TEST(MutexWithoutAName, IsAlwaysUsable) {
    EXPECT_TRUE(CKorMutex().IsUsable());
    EXPECT_TRUE(CKorMutex(0, nullptr, 0).IsUsable());
    EXPECT_TRUE(CKorMutex(0, "", 0).IsUsable());
}

}  // namespace
