// Replacing a segment's contents all or nothing.
#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <cstdint>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "child_process.h"
#include "korcore/guard.h"
#include "korcore/stream.h"
#include "shared_directory.h"
#include "support/file_limit.h"

namespace {

constexpr char kName[] = "segment";
constexpr char kJournal[] = "segment.journal";
constexpr size_t kSize = 10624;
constexpr size_t kHeader = 24;

class Replace : public SharedDirectory {
  protected:
    static std::string Contents(const CKorStreamSharedMemory& stream) {
        return {reinterpret_cast<const char*>(stream.Bytes()), stream.Size()};
    }
    static bool Put(CKorStreamSharedMemory& stream, const std::string& image) {
        return stream.Replace(image.data(), image.size());
    }
    // Turns the journal of a finished Replace into that of one whose process died before the copy.
    void UndoTheLastMark() const {
        const uint32_t complete = 0x4B4A524E;
        Overwrite(kJournal, 0, std::string(reinterpret_cast<const char*>(&complete), 4));
    }
};

TEST_F(Replace, ChangesTheFirstBytesAndNoOthers) {
    CKorStreamSharedMemory stream(kName, kSize);
    ASSERT_TRUE(Put(stream, std::string(kSize, 'o')));
    EXPECT_EQ(std::string(kSize, 'o'), ReadFile(kName));
    ASSERT_TRUE(Put(stream, "new"));
    EXPECT_EQ("new" + std::string(kSize - 3, 'o'), ReadFile(kName));
    ASSERT_TRUE(Put(stream, ""));
    EXPECT_EQ("new" + std::string(kSize - 3, 'o'), Contents(stream));
    EXPECT_EQ(0660U, ModeOf(kJournal));
    EXPECT_EQ(static_cast<off_t>(kSize), SizeOf(kName));
    EXPECT_EQ(2U, FileCount());
}

TEST_F(Replace, OfMoreThanTheSegmentIsRefused) {
    CKorStreamSharedMemory stream(kName, kSize);
    EXPECT_FALSE(Put(stream, std::string(kSize + 1, 'x')));
    EXPECT_EQ(std::string(kSize, '\0'), ReadFile(kName));
}

TEST_F(Replace, OfASegmentWhoseJournalCanHaveNoNameIsRefused) {
    for (const size_t length : {NAME_MAX - 7, NAME_MAX}) {
        CKorStreamSharedMemory stream(std::string(length, 's').c_str(), kSize);
        ASSERT_TRUE(stream.IsOpen());
        EXPECT_FALSE(Put(stream, "new"));
        EXPECT_TRUE(stream.Write("old", 3));
        EXPECT_EQ("old", Contents(stream).substr(0, 3));
    }
}

TEST_F(Replace, TakesAnImageFromTheSegmentItself) {
    CKorStreamSharedMemory stream(kName, kSize);
    ASSERT_TRUE(Put(stream, "0123456789"));
    ASSERT_TRUE(stream.Replace(stream.Bytes() + 3, 4));
    EXPECT_EQ("3456456789", ReadFile(kName).substr(0, 10));
}

TEST_F(Replace, MovesNoPosition) {
    CKorStreamSharedMemory stream(kName, kSize);
    stream << 1;
    ASSERT_TRUE(Put(stream, std::string(4, '\0')));
    EXPECT_EQ(kSize - 4, stream.Remaining());
}

TEST_F(Replace, WithoutRoomForTheJournalIsRefusedUntilThereIsRoom) {
    std::optional<CKorStreamSharedMemory> stream;
    {
        const oam::test::FileSizeLimit full(kSize);
        stream.emplace(kName, kSize);
        ASSERT_TRUE(stream->IsOpen());
        EXPECT_FALSE(Put(*stream, "new"));
        EXPECT_EQ(std::string(kSize, '\0'), ReadFile(kName));
    }
    EXPECT_TRUE(Put(*stream, "new"));
    EXPECT_EQ("new", ReadFile(kName).substr(0, 3));
}

TEST_F(Replace, WhoseProcessDiedIsFinishedByTheNext) {
    CKorStreamSharedMemory stream(kName, kSize);
    CKorStreamSharedMemory attachedBefore(kName, kSize);
    ASSERT_TRUE(Put(stream, std::string(kSize, 'n')));
    Overwrite(kName, 0, std::string(kSize / 2, 'o'));
    UndoTheLastMark();
    attachedBefore.Recover();
    EXPECT_EQ(std::string(kSize, 'n'), ReadFile(kName));
    Overwrite(kName, 0, "later");
    CKorStreamSharedMemory(kName, kSize).Recover();
    EXPECT_EQ("later", ReadFile(kName).substr(0, 5));
}

TEST_F(Replace, FinishesTheOneBefore) {
    CKorStreamSharedMemory stream(kName, kSize);
    ASSERT_TRUE(Put(stream, std::string(kSize, 'n')));
    Overwrite(kName, 0, std::string(kSize, 'o'));
    UndoTheLastMark();
    ASSERT_TRUE(Put(stream, "head"));
    EXPECT_EQ("head" + std::string(kSize - 4, 'n'), ReadFile(kName));
}

TEST_F(Replace, LeavesWhatIsNoCompleteJournalAlone) {
    CKorStreamSharedMemory stream(kName, kSize);
    ASSERT_TRUE(Put(stream, std::string(kSize, 'n')));
    Overwrite(kName, 0, std::string(kSize, 'o'));
    UndoTheLastMark();
    const std::string good = ReadFile(kJournal);
    const uint64_t hugeLengths[] = {kSize + 1, UINT64_MAX, UINT64_MAX - kHeader, 1};
    std::vector<std::string> journals;
    for (const uint64_t length : hugeLengths) {
        journals.push_back(good);
        journals.back().replace(8, 8, reinterpret_cast<const char*>(&length), 8);
    }
    for (const size_t changed : {size_t{0}, size_t{16}, kHeader, kHeader + kSize - 1}) {
        journals.push_back(good);
        journals.back()[changed] ^= 1;
    }
    std::mt19937 random(7);
    for (char& byte : journals.emplace_back(good)) byte = static_cast<char>(random());
    for (const std::string& journal : journals) {
        Overwrite(kJournal, 0, journal);
        stream.Recover();
        EXPECT_EQ(std::string(kSize, 'o'), ReadFile(kName));
        EXPECT_EQ(journal, ReadFile(kJournal));
    }
    Overwrite(kJournal, 0, good);
    stream.Recover();
    EXPECT_EQ(std::string(kSize, 'n'), ReadFile(kName));
}

TEST_F(Replace, MakesAJournalThatWasCutShortWholeAgain) {
    CKorStreamSharedMemory stream(kName, kSize);
    ASSERT_TRUE(Put(stream, std::string(kSize, 'n')));
    Overwrite(kName, 0, std::string(kSize, 'o'));
    UndoTheLastMark();
    for (const off_t size : {off_t{4000}, off_t{4}, off_t{0}}) {
        Cut(kJournal, size);
        stream.Recover();
        EXPECT_EQ(std::string(kSize, 'o'), ReadFile(kName));
    }
    EXPECT_TRUE(Put(stream, "new"));
    EXPECT_EQ("new" + std::string(kSize - 3, 'o'), ReadFile(kName));
}

TEST_F(Replace, OfAnEarlierSegmentIsNotFinishedInALaterOne) {
    {
        CKorStreamSharedMemory stream(kName, kSize);
        ASSERT_TRUE(Put(stream, std::string(kSize, 'n')));
        UndoTheLastMark();
    }
    ASSERT_EQ(0, unlink(PathOf(kName).c_str()));
    CKorStreamSharedMemory later(kName, kSize);
    later.Recover();
    EXPECT_EQ(std::string(kSize, '\0'), ReadFile(kName));
}

TEST_F(Replace, WithAForeignThingForAJournalIsRefused) {
    ASSERT_EQ(0, mkdir(PathOf(kJournal).c_str(), 0700));
    CKorStreamSharedMemory stream(kName, kSize);
    EXPECT_TRUE(stream.IsOpen());
    stream.Recover();
    EXPECT_FALSE(Put(stream, "new"));
    EXPECT_EQ(std::string(kSize, '\0'), ReadFile(kName));
}

TEST_F(Replace, KilledAtAnyMomentLeavesTheOldOrTheNewBytes) {
    using std::chrono::steady_clock;
    CKorMutex lock(0, "lock");
    std::mt19937 random(std::random_device{}());
    const auto end = steady_clock::now() + std::chrono::seconds(1);
    int changes = 0;
    std::string before(kSize, '\0');
    for (int round = 0; round < 400 && steady_clock::now() < end; ++round) {
        Baton started;
        ChildProcess writer([&] {
            CKorMutex childsLock(0, "lock");
            CKorStreamSharedMemory stream(kName, kSize);
            started.Pass();
            for (unsigned fill = 1;; ++fill) {
                const std::string image(kSize, static_cast<char>('a' + fill % 26));
                const KorGuard guard(childsLock);
                stream.Recover();
                if (!Put(stream, image)) return 1;
            }
        });
        ASSERT_TRUE(started.Await());
        usleep(random() % 1000);
        writer.Kill();
        const KorGuard guard(lock);
        ASSERT_TRUE(guard.IsHeld());
        CKorStreamSharedMemory stream(kName, kSize);
        stream.Recover();
        const std::string now = Contents(stream);
        ASSERT_EQ(std::string(kSize, now[0]), now);
        changes += now != before;
        before = now;
    }
    EXPECT_GT(changes, 1);
}

}  // namespace
