// Files that stand where a named lock should be, and locks whose file is damaged.
#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <thread>

#include "child_process.h"
#include "korcore/guard.h"
#include "korcore/lock_record.h"
#include "korcore/mutex.h"
#include "lock_steps.h"
#include "shared_directory.h"
#include "spoiled_lock.h"
#include "support/file_limit.h"

namespace {

constexpr char kName[] = "lock";

class LockFile : public SharedDirectory {
  protected:
    // A file that is a good lock.
    std::string GoodRecord() {
        const CKorMutex mutex(0, kName);
        return ReadFile(kName);
    }
    static void ExpectRefused() {
        CKorMutex mutex(0, kName);
        EXPECT_FALSE(mutex.IsUsable());
        EXPECT_FALSE(take(mutex));
        EXPECT_FALSE(take(mutex, 0));
        giveBack(mutex);
        EXPECT_FALSE(takeBriefly(mutex));
        giveBackBriefly(mutex);
        const KorGuard guard(mutex);
        EXPECT_FALSE(guard.IsHeld());
    }
    static void ExpectWorks() {
        CKorMutex mutex(0, kName);
        EXPECT_TRUE(mutex.IsUsable());
        EXPECT_TRUE(take(mutex, 1000));
        EXPECT_FALSE(othersCanTake(mutex));
        giveBack(mutex);
        EXPECT_TRUE(othersCanTake(mutex));
    }
};

TEST_F(LockFile, OfGarbageIsRefused) {
    std::mt19937 random(1);
    for (const size_t size : {sizeof(KorLockRecord), size_t{4096}, size_t{100000}}) {
        std::string garbage(size, '\0');
        for (char& byte : garbage) byte = static_cast<char>(random());
        WriteFile(kName, garbage);
        ExpectRefused();
        EXPECT_EQ(garbage, ReadFile(kName));
    }
}

TEST_F(LockFile, TooShortIsRefused) {
    const std::string good = GoodRecord();
    for (const size_t size : {size_t{1}, size_t{8}, size_t{20}, good.size() / 2, good.size() - 1}) {
        ASSERT_EQ(0, unlink(PathOf(kName).c_str()));
        WriteFile(kName, good.substr(0, size));
        ExpectRefused();
    }
}

TEST_F(LockFile, OfAnotherStateSizeOrKindIsRefused) {
    const std::string good = GoodRecord();
    for (const size_t offset :
         {offsetof(KorLockRecord, state), offsetof(KorLockRecord, size),
          offsetof(KorLockRecord, mutex) + offsetof(pthread_mutex_t, __data.__kind),
          offsetof(KorLockRecord, mutex[3]) + offsetof(pthread_mutex_t, __data.__kind),
          offsetof(KorLockRecord, end)}) {
        std::string bad = good;
        bad[offset] = static_cast<char>(bad[offset] + 1);
        WriteFile(kName, bad);
        ExpectRefused();
    }
}

TEST_F(LockFile, ThatIsNoRegularFileIsRefused) {
    ASSERT_EQ(0, mkdir(PathOf(kName).c_str(), 0700));
    ExpectRefused();
    ASSERT_EQ(0, rmdir(PathOf(kName).c_str()));
    ASSERT_EQ(0, mkfifo(PathOf(kName).c_str(), 0600));
    ExpectRefused();
    ASSERT_EQ(0, unlink(PathOf(kName).c_str()));
    { const CKorMutex target(0, "target"); }
    ASSERT_EQ(0, symlink(PathOf("target").c_str(), PathOf(kName).c_str()));
    ExpectRefused();
}

TEST_F(LockFile, ThatCannotBeMadeIsRefused) {
    ChildProcess child([] {
        const oam::test::FileSizeLimit limit(16);
        ExpectRefused();
        return HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(0, child.Await());
    EXPECT_EQ(0U, FileCount());
    setenv("KOR_SHM_DIR", PathOf("missing").c_str(), 1);
    ExpectRefused();
}

TEST_F(LockFile, OfABadNameIsRefused) {
    for (const std::string& name : {std::string("a/b"), std::string("/a"), std::string("."),
                                    std::string(".."), std::string(300, 'n')}) {
        EXPECT_FALSE(CKorMutex(0, name.c_str()).IsUsable()) << name;
    }
}

TEST_F(LockFile, ThatIsEmptyIsCompleted) {
    WriteFile(kName, "");
    ExpectWorks();
    EXPECT_EQ(0660U, ModeOf(kName));
}

TEST_F(LockFile, ThatIsAllZeroIsCompleted) {
    for (const size_t size : {sizeof(KorLockRecord) / 2, sizeof(KorLockRecord)}) {
        ASSERT_EQ(0, access(Directory().c_str(), W_OK));
        WriteFile(kName, std::string(size, '\0'));
        ExpectWorks();
    }
}

TEST_F(LockFile, WhoseWritingWasInterruptedIsCompleted) {
    std::string half = GoodRecord();
    const uint32_t making = KorLockRecord::kMaking;
    half.replace(offsetof(KorLockRecord, state), sizeof making,
                 reinterpret_cast<const char*>(&making), sizeof making);
    half.replace(half.size() / 2, std::string::npos,
                 std::string(half.size() - half.size() / 2, 'x'));
    WriteFile(kName, half);
    ExpectWorks();
}

// As a death leaves the next mutex in the middle of its making.
TEST_F(LockFile, WhoseReplacingWasInterruptedIsCompleted) {
    std::string record = GoodRecord();
    record.replace(offsetof(KorLockRecord, mutex[1]), sizeof(pthread_mutex_t),
                   sizeof(pthread_mutex_t), '\0');
    WriteFile(kName, record);
    ExpectWorks();
    EXPECT_EQ(GoodRecord(), ReadFile(kName));
}

TEST_F(LockFile, CutShortIsNoticedAtTheNextLock) {
    CKorMutex mutex(0, kName);
    ASSERT_TRUE(take(mutex));
    giveBack(mutex);
    Cut(kName, 8);
    EXPECT_FALSE(mutex.IsUsable());
    EXPECT_FALSE(take(mutex));
    Cut(kName, 0);
    EXPECT_FALSE(take(mutex, 0));
    giveBack(mutex);
}

TEST_F(LockFile, CutShortIsReplacedForTheNextObjectOnceItIsEmpty) {
    CKorMutex mutex(0, kName);
    Cut(kName, 0);
    ExpectWorks();
    EXPECT_FALSE(mutex.IsUsable());
}

TEST_F(LockFile, CutShortWhileItIsHeldIsLostAndNotFatal) {
    std::thread([&] {
        CKorMutex mutex(0, kName);
        ASSERT_TRUE(take(mutex));
        Cut(kName, 0);
        giveBack(mutex);
        EXPECT_FALSE(mutex.IsUsable());
        EXPECT_FALSE(take(mutex));
        CKorMutex other(0, "other");
        EXPECT_TRUE(take(other));
        giveBack(other);
        ExpectWorks();
    }).join();
}

TEST_F(LockFile, WhoseMutexCannotBeRecoveredGoesOnWithTheNext) {
    CKorMutex mutex(0, kName);
    const unsigned timeouts[] = {0, 1000, kKorForever};
    for (int round = 0; round < 6; ++round) {
        ASSERT_EQ(0, spoilLock(PathOf(kName)));
        EXPECT_TRUE(take(mutex, timeouts[round % 3]));
        ChildProcess other([] {
            CKorMutex found(0, kName);
            return take(found, 0) ? 1 : 0;
        });
        EXPECT_EQ(0, other.Await());
        giveBack(mutex);
    }
    ExpectWorks();
}

}  // namespace
