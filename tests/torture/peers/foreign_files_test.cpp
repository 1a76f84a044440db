// Files of the shadow that nobody of ours has made: who comes to them is answered with codes and
// with what the bytes say, and reads nothing outside of them.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <limits>
#include <map>
#include <optional>
#include <random>

#include "peer_files.h"
#include "torture/crash/points.h"
#include "totals.h"
#include "unit/platform/shared_directory.h"
#include "visitor.h"

namespace oam::torture {
namespace {

constexpr Generation kTable = 5;
constexpr std::size_t kSegmentSize = 10624;
constexpr std::size_t kRecordSize = 332;
constexpr const char* kFiles[] = {kSegmentFile, kJournalFile, kLockFile};
constexpr std::size_t kQuickTrials = 10;
constexpr std::size_t kFullTrials = 500;

std::size_t trials() { return IsFull() ? kFullTrials : kQuickTrials; }

class ForeignFiles : public SharedDirectory {
  protected:
    void SetUp() override {
        LeaveTable(kTable);
        for (const char* name : kFiles) ours_[name] = ReadFile(name);
    }

    // The files as our own processes leave them.
    void Renew() {
        RemoveSharedFiles();
        for (const auto& [name, bytes] : ours_) WriteFile(name, bytes);
    }
    void ExpectVisit(Outcome expected, std::optional<Generation> first = std::nullopt) {
        ++visits_;
        ++TheTotals().visits;
        ASSERT_EQ(Visit(expected, first), "");
    }
    void TellVisits(const std::string& what) {
        TellFigures("shadow peer, " + what,
                    std::to_string(visits_) + " visits, 0 crashes, 0 read outside");
    }

    std::string RandomBytes(std::size_t size) {
        std::string bytes(size, '\0');
        for (char& byte : bytes) byte = static_cast<char>(random_());
        return bytes;
    }
    std::mt19937_64 random_{Seed()};

  private:
    std::map<std::string, std::string> ours_;
    std::size_t visits_ = 0;
};

std::string countBytes(std::int32_t count) {
    return {reinterpret_cast<const char*>(&count), sizeof count};
}

TEST_F(ForeignFiles, WithAnyCountInTheSegment) {
    std::vector<std::int32_t> counts = {-1,
                                        0,
                                        1,
                                        30,
                                        31,
                                        32,
                                        33,
                                        1000,
                                        0x01000000,
                                        std::numeric_limits<std::int32_t>::min(),
                                        std::numeric_limits<std::int32_t>::max()};
    for (std::size_t i = 0; i < trials(); ++i) counts.push_back(static_cast<int>(random_()));
    for (const std::int32_t count : counts) {
        SCOPED_TRACE(count);
        Overwrite(kSegmentFile, 0, countBytes(count));
        ASSERT_NO_FATAL_FAILURE(ExpectVisit(Outcome::kGoesOn));
    }
    TellVisits("any count");
}

// Each text by itself, and all of them.
TEST_F(ForeignFiles, WithTextsThatDoNotEnd) {
    const std::pair<std::size_t, std::size_t> kTexts[] = {
        {0, 129}, {136, 129}, {265, 65}, {0, kRecordSize}};
    for (const auto& [offset, size] : kTexts) {
        for (const std::size_t record : {0, 1, 30}) {
            SCOPED_TRACE(offset);
            Overwrite(kSegmentFile, 0, countBytes(31));
            Overwrite(kSegmentFile, static_cast<off_t>(4 + record * kRecordSize + offset),
                      std::string(size, 'Z'));
            ASSERT_NO_FATAL_FAILURE(ExpectVisit(Outcome::kGoesOn));
        }
    }
    Overwrite(kSegmentFile, 4, std::string(kSegmentSize - 4, 'Z'));
    ASSERT_NO_FATAL_FAILURE(ExpectVisit(Outcome::kGoesOn));
    TellVisits("texts without end");
}

TEST_F(ForeignFiles, WithAnyBytesInTheSegment) {
    for (std::size_t i = 0; i < trials(); ++i) {
        SCOPED_TRACE("trial " + std::to_string(i) +
                     " of OAM_TORTURE_SEED=" + std::to_string(Seed()));
        std::string bytes = RandomBytes(kSegmentSize);
        if (i % 2 == 0) bytes.replace(0, 4, countBytes(static_cast<int>(random_() % 32)));
        WriteFile(kSegmentFile, bytes);
        ASSERT_NO_FATAL_FAILURE(ExpectVisit(Outcome::kGoesOn));
    }
    TellVisits("any bytes");
}

// It is left alone, unless somebody has completed it.
TEST_F(ForeignFiles, WithAnyBytesInTheJournal) {
    for (std::size_t i = 0; i < trials(); ++i) {
        SCOPED_TRACE("trial " + std::to_string(i) +
                     " of OAM_TORTURE_SEED=" + std::to_string(Seed()));
        Renew();
        LeaveJournal(kTable + 1);
        std::string bytes = RandomBytes(kSegmentSize + 24);
        // As if it were complete, and of a length that can be.
        if (i % 3 != 0) bytes.replace(0, 8, ReadFile(kJournalFile).substr(0, 8));
        if (i % 3 == 2) bytes.replace(8, 8, ReadFile(kJournalFile).substr(8, 8));
        WriteFile(kJournalFile, bytes);
        ASSERT_NO_FATAL_FAILURE(ExpectVisit(Outcome::kGoesOn, kTable));
        Renew();
        const std::string image = RandomBytes(random_() % kSegmentSize);
        LeaveForeignJournal(image);
        ASSERT_NO_FATAL_FAILURE(ExpectVisit(Outcome::kGoesOn));
    }
    TellVisits("any journal");
}

TEST_F(ForeignFiles, WithAnyBytesInTheLock) {
    const std::string good = ReadFile(kLockFile);
    for (std::size_t i = 0; i < trials(); ++i) {
        SCOPED_TRACE("trial " + std::to_string(i) +
                     " of OAM_TORTURE_SEED=" + std::to_string(Seed()));
        WriteFile(kLockFile, RandomBytes(good.size()));
        ASSERT_NO_FATAL_FAILURE(ExpectVisit(Outcome::kIsRefused));
    }
    WriteFile(kLockFile, std::string(good.size(), '\0'));
    ASSERT_NO_FATAL_FAILURE(ExpectVisit(Outcome::kGoesOn));
    TellVisits("any lock");
}

TEST_F(ForeignFiles, CutToAnyLength) {
    for (const char* name : kFiles) {
        const auto whole = static_cast<std::size_t>(SizeOf(name));
        for (const std::size_t size : ChosenPoints(whole, kQuickTrials)) {
            SCOPED_TRACE(std::string(name) + " of " + std::to_string(size) + " bytes");
            Renew();
            Cut(name, static_cast<off_t>(size));
            const bool isLock = std::strcmp(name, kLockFile) == 0;
            ASSERT_NO_FATAL_FAILURE(
                ExpectVisit(isLock && size > 0 ? Outcome::kIsRefused : Outcome::kGoesOn));
        }
    }
    TellVisits("cut to any length");
}

TEST_F(ForeignFiles, LongerThanTheyShouldBe) {
    for (const char* name : kFiles) {
        for (const std::size_t more : {std::size_t{1}, std::size_t{2000}, std::size_t{1} << 20}) {
            SCOPED_TRACE(std::string(name) + " and " + std::to_string(more) + " bytes");
            Renew();
            const std::string longer = ReadFile(name) + std::string(more, 'Z');
            WriteFile(name, longer);
            ASSERT_NO_FATAL_FAILURE(ExpectVisit(Outcome::kGoesOn, kTable));
            EXPECT_EQ(ReadFile(name).substr(longer.size() - more), std::string(more, 'Z'));
        }
        Renew();
        Cut(name, off_t{1} << 32);
        ASSERT_NO_FATAL_FAILURE(ExpectVisit(Outcome::kGoesOn, kTable));
    }
    TellVisits("too long");
}

// Neither a segment nor a lock; without a journal there are no changes.
TEST_F(ForeignFiles, ThatAreNoRegularFiles) {
    const auto expect = [this](const char* name) {
        const bool isJournal = std::strcmp(name, kJournalFile) == 0;
        if (isJournal) return ExpectVisit(Outcome::kCannotPublish, kTable);
        ExpectVisit(Outcome::kIsRefused);
    };
    for (const char* name : kFiles) {
        SCOPED_TRACE(name);
        const std::string path = SharedPath(name);
        const auto make = [&](const auto& makeIt) {
            Renew();
            std::filesystem::rename(path, path + ".moved");
            ASSERT_TRUE(makeIt());
            ASSERT_NO_FATAL_FAILURE(expect(name));
        };
        make([&] { return mkdir(path.c_str(), 0700) == 0; });
        make([&] { return mkfifo(path.c_str(), 0600) == 0; });
        make([&] { return symlink((path + ".moved").c_str(), path.c_str()) == 0; });
        make([&] { return symlink("nowhere", path.c_str()) == 0; });
    }
    TellVisits("no regular files");
}

TEST_F(ForeignFiles, OfAnotherProgram) {
    const std::string program = ReadFile("../../proc/self/exe");
    for (const char* name : kFiles) {
        SCOPED_TRACE(name);
        Renew();
        WriteFile(name, program);
        ASSERT_NO_FATAL_FAILURE(ExpectVisit(std::strcmp(name, kLockFile) == 0 ? Outcome::kIsRefused
                                                                              : Outcome::kGoesOn));
        EXPECT_EQ(ReadFile(name).substr(kSegmentSize + 24), program.substr(kSegmentSize + 24));
    }
    TellVisits("another program's files");
}

}  // namespace
}  // namespace oam::torture
