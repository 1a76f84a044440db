// A CKorMutex with a name, in one process and between processes.
#include <gtest/gtest.h>
#include <sched.h>

#include <chrono>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include "child_process.h"
#include "korcore/guard.h"
#include "korcore/mutex.h"
#include "lock_steps.h"
#include "shared_directory.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr char kName[] = "lock";

class NamedMutex : public SharedDirectory {
  protected:
    // A process of its own that takes the lock so many times and keeps it.
    class Holder {
      public:
        explicit Holder(int times = 1)
            : process_([this, times] {
                  CKorMutex mutex(0, kName);
                  for (int i = 0; i < times; ++i) {
                      if (!take(mutex)) return 1;
                  }
                  taken_.Pass();
                  if (!release_.Await()) return 2;
                  for (int i = 0; i < times; ++i) giveBack(mutex);
                  return 0;
              }) {}
        bool HasIt() const { return taken_.Await(); }
        int Release() {
            release_.Pass();
            return process_.Await();
        }
        void Kill() { process_.Kill(); }

      private:
        Baton taken_;
        Baton release_;
        ChildProcess process_;
    };
};

TEST_F(NamedMutex, IsAFileOfItsNameForOwnerAndGroup) {
    const CKorMutex mutex(0, kName);
    EXPECT_TRUE(mutex.IsUsable());
    EXPECT_EQ(0660U, ModeOf(kName));
    EXPECT_EQ(1U, FileCount());
}

TEST_F(NamedMutex, LeavesItsFileBehind) {
    { const CKorMutex mutex(0, kName); }
    EXPECT_EQ(1U, FileCount());
    CKorMutex again(0, kName);
    EXPECT_TRUE(othersCanTake(again));
}

TEST_F(NamedMutex, IsGivenBackByAsManyUnlocksAsLocks) {
    CKorMutex mutex(0, kName);
    ASSERT_TRUE(take(mutex));
    ASSERT_TRUE(take(mutex, 0));
    ASSERT_TRUE(take(mutex, 10));
    giveBack(mutex);
    giveBack(mutex);
    EXPECT_FALSE(othersCanTake(mutex));
    giveBack(mutex);
    EXPECT_TRUE(othersCanTake(mutex));
}

TEST_F(NamedMutex, NestsThroughAllObjectsOfTheProcess) {
    CKorMutex first(0, kName);
    CKorMutex second(0, kName);
    ASSERT_TRUE(take(first));
    ASSERT_TRUE(take(second, 0));
    giveBack(first);
    EXPECT_FALSE(othersCanTake(first));
    EXPECT_FALSE(othersCanTake(second));
    giveBack(first);
    EXPECT_TRUE(othersCanTake(second));
}

TEST_F(NamedMutex, IsTheSameUnderEveryNameOfItsFile) {
    CKorMutex first(0, kName);
    ASSERT_EQ(0, link(PathOf(kName).c_str(), PathOf("alias").c_str()));
    CKorMutex second(0, "alias");
    const KorGuard held(first);
    EXPECT_TRUE(take(second, 0));
    giveBack(second);
    EXPECT_FALSE(othersCanTake(second));
}

TEST_F(NamedMutex, IsAnotherOneForAnotherNameOrFile) {
    CKorMutex first(0, kName);
    const KorGuard held(first);
    CKorMutex other(0, "other");
    EXPECT_TRUE(othersCanTake(other));
    ASSERT_EQ(0, unlink(PathOf(kName).c_str()));
    CKorMutex anew(0, kName);
    EXPECT_TRUE(anew.IsUsable());
    EXPECT_TRUE(othersCanTake(anew));
}

TEST_F(NamedMutex, OutlivesThoseThatCameBeforeIt) {
    auto first = std::make_unique<CKorMutex>(0, "first");
    auto second = std::make_unique<CKorMutex>(0, "second");
    CKorMutex mutex(0, kName);
    ASSERT_TRUE(take(mutex));
    first.reset();
    second.reset();
    EXPECT_FALSE(othersCanTake(mutex));
    giveBack(mutex);
    EXPECT_TRUE(othersCanTake(mutex));
}

TEST_F(NamedMutex, OutlivesTheObjectThatTookItWhileAnotherIsLeft) {
    CKorMutex stays(0, kName);
    {
        CKorMutex goes(0, kName);
        ASSERT_TRUE(take(goes));
    }
    EXPECT_FALSE(othersCanTake(stays));
    giveBack(stays);
    EXPECT_TRUE(othersCanTake(stays));
}

TEST_F(NamedMutex, IsGivenBackWhenTheLastObjectGoes) {
    {
        CKorMutex mutex(0, kName);
        ASSERT_TRUE(take(mutex));
        ASSERT_TRUE(take(mutex));
    }
    ChildProcess other([] {
        CKorMutex mutex(0, kName);
        return take(mutex, 0) ? 0 : 1;
    });
    EXPECT_EQ(0, other.Await());
}

TEST_F(NamedMutex, StaysWithTheThreadThatHoldsItWhenTheLastObjectGoes) {
    auto mutex = std::make_unique<CKorMutex>(0, kName);
    std::optional<CKorMutex> later;
    Baton taken, back, checked;
    std::thread holder([&] {
        EXPECT_TRUE(take(*mutex));
        taken.Pass();
        EXPECT_TRUE(back.Await());
        giveBack(*later);
        checked.Pass();
    });
    ASSERT_TRUE(taken.Await());
    mutex.reset();
    later.emplace(0, kName);
    EXPECT_FALSE(take(*later, 0));
    back.Pass();
    EXPECT_TRUE(checked.Await());
    EXPECT_TRUE(take(*later));
    giveBack(*later);
    holder.join();
}

TEST_F(NamedMutex, IsNotGivenBackByWhoDoesNotHoldIt) {
    CKorMutex mutex(0, kName);
    giveBack(mutex);
    ASSERT_TRUE(take(mutex));
    std::thread([&] { giveBack(mutex); }).join();
    EXPECT_FALSE(othersCanTake(mutex));
    giveBack(mutex);
    giveBack(mutex);
    EXPECT_TRUE(othersCanTake(mutex));
}

TEST_F(NamedMutex, KeepsProcessesApart) {
    Holder holder;
    CKorMutex mutex(0, kName);
    ASSERT_TRUE(holder.HasIt());
    EXPECT_FALSE(take(mutex, 0));
    const auto begin = steady_clock::now();
    EXPECT_FALSE(take(mutex, 50));
    EXPECT_GE(steady_clock::now() - begin, milliseconds(50));
    EXPECT_EQ(0, holder.Release());
    EXPECT_TRUE(take(mutex, 30000));
    giveBack(mutex);
}

TEST_F(NamedMutex, IsHeldBrieflyInsideALongerHold) {
    CKorMutex mutex(0, kName);
    ASSERT_TRUE(take(mutex));
    ASSERT_TRUE(takeBriefly(mutex));
    giveBackBriefly(mutex);
    EXPECT_FALSE(othersCanTake(mutex));
    giveBack(mutex);
    ASSERT_TRUE(takeBriefly(mutex));
    EXPECT_FALSE(othersCanTake(mutex));
    giveBackBriefly(mutex);
    EXPECT_TRUE(othersCanTake(mutex));
}

TEST_F(NamedMutex, IsGivenBackWhollyAfterABriefHoldThatHadToBeWaitedFor) {
    CKorMutex mutex(0, kName);
    Holder first;
    ASSERT_TRUE(first.HasIt());
    std::thread waiting([&] {
        EXPECT_TRUE(takeBriefly(mutex));
        giveBackBriefly(mutex);
    });
    // Time for it to find the lock taken; were that not enough, it finds it free.
    std::this_thread::sleep_for(milliseconds(20));
    EXPECT_EQ(0, first.Release());
    waiting.join();
    Holder second;
    EXPECT_TRUE(second.HasIt());
    EXPECT_EQ(0, second.Release());
}

TEST_F(NamedMutex, CountsNestingAcrossProcesses) {
    Holder holder(3);
    CKorMutex mutex(0, kName);
    ASSERT_TRUE(holder.HasIt());
    EXPECT_FALSE(take(mutex, 0));
    EXPECT_EQ(0, holder.Release());
    EXPECT_TRUE(take(mutex, 0));
    giveBack(mutex);
}

TEST_F(NamedMutex, GoesToTheNextWhenItsOwnerIsKilled) {
    for (const unsigned timeout : {0U, 30000U, kKorForever}) {
        Holder holder(2);
        CKorMutex mutex(0, kName);
        ASSERT_TRUE(holder.HasIt());
        EXPECT_FALSE(take(mutex, 0));
        holder.Kill();
        EXPECT_TRUE(take(mutex, timeout));
        EXPECT_TRUE(mutex.IsUsable());
        giveBack(mutex);
        EXPECT_TRUE(othersCanTake(mutex));
    }
}

TEST_F(NamedMutex, GoesToAWaiterWhenItsOwnerIsKilled) {
    Holder holder;
    CKorMutex mutex(0, kName);
    ASSERT_TRUE(holder.HasIt());
    std::thread waiting([&] { EXPECT_TRUE(othersCanTake(mutex, 30000)); });
    holder.Kill();
    waiting.join();
}

TEST_F(NamedMutex, GoesToTheNextWhenTheThreadThatHoldsItEnds) {
    CKorMutex mutex(0, kName);
    std::thread([&] {
        EXPECT_TRUE(take(mutex));
        EXPECT_TRUE(take(mutex));
    }).join();
    EXPECT_TRUE(take(mutex, 30000));
    giveBack(mutex);
    EXPECT_TRUE(othersCanTake(mutex));
}

TEST_F(NamedMutex, KeepsThreadsOfSeveralProcessesApart) {
    constexpr int kRounds = 200;
    WriteFile("count", std::string(sizeof(int), '\0'));
    const auto countUp = [&] {
        CKorMutex mutex(0, kName);
        for (int i = 0; i < kRounds; ++i) {
            const KorGuard guard(mutex);
            int count = 0;
            const int file = open(PathOf("count").c_str(), O_RDWR | O_CLOEXEC);
            if (pread(file, &count, sizeof count, 0) != sizeof count) abort();
            ++count;
            if (pwrite(file, &count, sizeof count, 0) != sizeof count) abort();
            close(file);
        }
    };
    const auto countUpTwice = [&] {
        std::thread other(countUp);
        countUp();
        other.join();
        return 0;
    };
    ChildProcess first(countUpTwice);
    ChildProcess second(countUpTwice);
    countUpTwice();
    EXPECT_EQ(0, first.Await());
    EXPECT_EQ(0, second.Await());
    int count = 0;
    ReadFile("count").copy(reinterpret_cast<char*>(&count), sizeof count);
    EXPECT_EQ(6 * kRounds, count);
}

// In a PID namespace of its own every first process is number 1, so the owners look alike.
TEST_F(NamedMutex, KeepsProcessesWithTheSameNumberApart) {
    Baton taken, checked;
    const auto asNumberOne = [](const std::function<int()>& body) {
        if (unshare(CLONE_NEWPID) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWPID) != 0) return 77;
        ChildProcess one([&] { return getpid() == 1 ? body() : 78; });
        return one.Await();
    };
    ChildProcess first([&] {
        const int result = asNumberOne([&] {
            CKorMutex mutex(0, kName);
            if (!take(mutex)) return 1;
            taken.Pass();
            return checked.Await() ? 0 : 2;
        });
        if (result == 77) taken.Pass();
        return result;
    });
    ASSERT_TRUE(taken.Await());
    ChildProcess second([&] {
        return asNumberOne([] {
            CKorMutex mutex(0, kName);
            return !take(mutex, 0) && !take(mutex, 20) ? 0 : 1;
        });
    });
    const int result = second.Await();
    checked.Pass();
    const int holderResult = first.Await();
    if (result == 77) GTEST_SKIP() << "no PID namespaces here";
    EXPECT_EQ(0, result);
    EXPECT_EQ(0, holderResult);
}

}  // namespace
