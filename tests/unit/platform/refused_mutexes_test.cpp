// Named locks on a system that makes no mutex between processes: a lock that cannot be had, and
// that can be as soon as the system has room.
#include "refused_mutexes.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cstddef>
#include <string>

#include "korcore/lock_record.h"
#include "korcore/mutex.h"
#include "lock_steps.h"
#include "shared_directory.h"
#include "spoiled_lock.h"
#include "traced_child.h"

namespace {

constexpr char kName[] = "lock";
// Refusals at the first mutex that is made, the second and so on, until none is left.
constexpr int kMostMutexes = 40;

class RefusedMutexes : public SharedDirectory {
  protected:
    std::string GoodRecord() {
        const CKorMutex mutex(0, kName);
        return ReadFile(kName);
    }
    // Nobody's lock while the system refuses, everybody's afterwards.
    void ExpectRefusedAtEachMutex(const std::string& found) {
        for (int from = 1;; ++from) {
            SCOPED_TRACE(from);
            ASSERT_LT(from, kMostMutexes);
            unlink(PathOf(kName).c_str());
            if (!found.empty()) WriteFile(kName, found);
            bool isRefused;
            {
                const SharedMutexesRefused system(from);
                CKorMutex mutex(0, kName);
                isRefused = system.HasHappened();
                EXPECT_NE(isRefused, mutex.IsUsable());
                EXPECT_NE(isRefused, take(mutex, 0));
                if (!isRefused) giveBack(mutex);
            }
            CKorMutex later(0, kName);
            EXPECT_TRUE(take(later, 0));
            giveBack(later);
            if (!isRefused) return;
        }
    }
};

TEST_F(RefusedMutexes, MakeNoLock) { ExpectRefusedAtEachMutex(""); }

TEST_F(RefusedMutexes, LeaveAGoodLockAsItIs) {
    const std::string good = GoodRecord();
    {
        const SharedMutexesRefused system;
        EXPECT_FALSE(CKorMutex(0, kName).IsUsable());
    }
    EXPECT_EQ(good, ReadFile(kName));
    ExpectRefusedAtEachMutex(good);
}

TEST_F(RefusedMutexes, CompleteNoLockThatIsBeingMade) {
    std::string half = GoodRecord();
    const uint32_t making = KorLockRecord::kMaking;
    half.replace(offsetof(KorLockRecord, state), sizeof making,
                 reinterpret_cast<const char*>(&making), sizeof making);
    ExpectRefusedAtEachMutex(half);
}

TEST_F(RefusedMutexes, CompleteNoLockThatIsBeingReplaced) {
    std::string record = GoodRecord();
    record.replace(offsetof(KorLockRecord, mutex[1]), sizeof(pthread_mutex_t),
                   sizeof(pthread_mutex_t), '\0');
    ExpectRefusedAtEachMutex(record);
}

TEST_F(RefusedMutexes, ReplaceNoMutexThatIsLost) {
    CKorMutex mutex(0, kName);
    ASSERT_EQ(0, spoilLock(PathOf(kName)));
    {
        const SharedMutexesRefused system;
        EXPECT_FALSE(take(mutex));
        EXPECT_TRUE(system.HasHappened());
    }
    EXPECT_TRUE(take(mutex));
    EXPECT_FALSE(othersCanTake(mutex));
    giveBack(mutex);
}

// The one that comes second finds the next mutex in its place.
TEST_F(RefusedMutexes, AreNotAskedForTwiceWhenTwoProcessesSeeThatOneIsLost) {
    CKorMutex mutex(0, kName);
    ASSERT_EQ(0, spoilLock(PathOf(kName)));
    bool isReplaced = false;
    const auto decide = [&](const oam::torture::SystemCall& call) {
        if (call.number == SYS_flock && !isReplaced) {
            isReplaced = take(mutex, 0);
            giveBack(mutex);
        }
        return oam::torture::Decision{};
    };
    const int status = oam::torture::RunTraced(
        [] {
            CKorMutex late(0, kName);
            if (!late.IsUsable()) return 1;
            oam::torture::TraceFromHere();
            const bool taken = take(late, 1000);
            oam::torture::TraceUntilHere();
            if (!taken) return 2;
            giveBack(late);
            return 0;
        },
        decide);
    EXPECT_TRUE(isReplaced);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    const std::string record = ReadFile(kName);
    uint32_t generation = 0;
    record.copy(reinterpret_cast<char*>(&generation), sizeof generation,
                offsetof(KorLockRecord, generation));
    EXPECT_EQ(1u, generation) << "replaced once";
}

}  // namespace
