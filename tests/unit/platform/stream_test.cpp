#include "korcore/stream.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "shared_directory.h"
#include "support/file_limit.h"

namespace {

constexpr char kName[] = "segment";

class SharedMemoryStream : public SharedDirectory {
  protected:
    static constexpr size_t kSize = 64;
    CKorStreamSharedMemory stream_{kName, kSize};
};

TEST_F(SharedMemoryStream, MakesASegmentOfExactlyItsSizeForOwnerAndGroup) {
    EXPECT_TRUE(stream_.IsOpen());
    EXPECT_TRUE(stream_.WasCreated());
    EXPECT_EQ(kSize, stream_.Size());
    EXPECT_EQ(static_cast<off_t>(kSize), SizeOf(kName));
    EXPECT_EQ(0660U, ModeOf(kName));
    stream_.ClearCreated();
    EXPECT_FALSE(stream_.WasCreated());
    EXPECT_FALSE(CKorStreamSharedMemory(kName, kSize).WasCreated());
}

TEST_F(SharedMemoryStream, PutsItsValuesFromTheSegmentsStart) {
    stream_ << 0x01020304 << true << false << -1;
    EXPECT_TRUE(stream_.Write("raw", 3));
    EXPECT_FALSE(stream_.IsFailed());
    EXPECT_EQ(kSize - 13, stream_.Remaining());
    const int numbers[] = {0x01020304, -1};
    const std::string expected = std::string(reinterpret_cast<const char*>(&numbers[0]), 4) + '\1' +
                                 '\0' + std::string(reinterpret_cast<const char*>(&numbers[1]), 4) +
                                 "raw";
    EXPECT_EQ(expected + std::string(kSize - 13, '\0'), ReadFile(kName));
}

TEST_F(SharedMemoryStream, ReadsBackWhatItWrote) {
    stream_ << INT_MIN << true << INT_MAX << false;
    EXPECT_TRUE(stream_.Write("raw", 4));
    stream_.Flush();
    int low = 1, high = 1;
    bool yes = false, no = true;
    char raw[4] = "";
    stream_ >> low >> yes >> high >> no;
    EXPECT_TRUE(stream_.Read(raw, 4));
    EXPECT_EQ(INT_MIN, low);
    EXPECT_EQ(INT_MAX, high);
    EXPECT_TRUE(yes);
    EXPECT_FALSE(no);
    EXPECT_STREQ("raw", raw);
}

TEST_F(SharedMemoryStream, TakesAnyByteButZeroForTrue) {
    for (int byte = 0; byte < 256; ++byte) {
        Overwrite(kName, 0, std::string(1, static_cast<char>(byte)));
        stream_.Flush();
        bool value = byte == 0;
        stream_ >> value;
        EXPECT_EQ(byte != 0, value) << byte;
    }
}

TEST_F(SharedMemoryStream, RefusesAWriteThatPassesTheEndWhole) {
    const std::string block(kSize - 2, 'b');
    EXPECT_TRUE(stream_.Write(block.data(), block.size()));
    stream_ << 7;
    EXPECT_TRUE(stream_.IsFailed());
    EXPECT_EQ(block + std::string(2, '\0'), ReadFile(kName));
}

TEST_F(SharedMemoryStream, TakesAWriteUpToTheEnd) {
    const std::string block(kSize, 'b');
    EXPECT_TRUE(stream_.Write(block.data(), block.size()));
    EXPECT_EQ(0U, stream_.Remaining());
    EXPECT_TRUE(stream_.Write("", 0));
    EXPECT_FALSE(stream_.IsFailed());
    EXPECT_FALSE(stream_.Write("b", 1));
}

TEST_F(SharedMemoryStream, ReadsNothingAnywhere) {
    EXPECT_TRUE(stream_.Read(nullptr, 0));
    const std::string block(kSize, 'b');
    EXPECT_TRUE(stream_.Write(block.data(), block.size()));
    EXPECT_TRUE(stream_.Read(nullptr, 0));
    EXPECT_FALSE(stream_.IsFailed());
}

TEST_F(SharedMemoryStream, RefusesEverythingAfterAFailureUntilFlush) {
    char block[kSize + 1] = "";
    EXPECT_FALSE(stream_.Write(block, sizeof block));
    EXPECT_EQ(0U, stream_.Remaining());
    EXPECT_FALSE(stream_.Write("a", 1));
    EXPECT_FALSE(stream_.Write("", 0));
    EXPECT_FALSE(stream_.Read(block, 1));
    stream_ << 7 << true;
    int number = 5;
    bool flag = true;
    stream_ >> number >> flag;
    EXPECT_EQ(0, number);
    EXPECT_FALSE(flag);
    EXPECT_EQ(std::string(kSize, '\0'), ReadFile(kName));
    stream_.Flush();
    EXPECT_FALSE(stream_.IsFailed());
    EXPECT_EQ(kSize, stream_.Remaining());
    EXPECT_TRUE(stream_.Write("a", 1));
}

TEST_F(SharedMemoryStream, RefusesAReadThatPassesTheEndWhole) {
    char block[kSize];
    EXPECT_TRUE(stream_.Read(block, kSize - 3));
    int number = 5;
    stream_ >> number;
    EXPECT_EQ(0, number);
    EXPECT_TRUE(stream_.IsFailed());
    stream_.Flush();
    char untouched[] = "untouched";
    EXPECT_FALSE(stream_.Read(untouched, ~size_t{0}));
    EXPECT_STREQ("untouched", untouched);
}

TEST_F(SharedMemoryStream, CanBeMarkedFailed) {
    stream_.Fail();
    EXPECT_TRUE(stream_.IsFailed());
    EXPECT_FALSE(stream_.Write("a", 1));
    stream_.Flush();
    EXPECT_TRUE(stream_.Write("a", 1));
}

TEST_F(SharedMemoryStream, SeesWhatAnotherWrites) {
    CKorStreamSharedMemory other(kName, kSize);
    other << 42;
    int number = 0;
    stream_ >> number;
    EXPECT_EQ(42, number);
    EXPECT_EQ(0, std::memcmp(&number, stream_.Bytes(), sizeof number));
}

TEST_F(SharedMemoryStream, RefusesASegmentThatWasCutShort) {
    stream_ << 42;
    stream_.Flush();
    Cut(kName, 0);
    EXPECT_EQ(nullptr, stream_.Bytes());
    int number = 5;
    stream_ >> number;
    EXPECT_EQ(0, number);
    EXPECT_TRUE(stream_.IsFailed());
    stream_.Flush();
    stream_ << 42;
    EXPECT_TRUE(stream_.IsFailed());
    EXPECT_FALSE(stream_.Replace("abc", 3));
    stream_.Recover();
    EXPECT_EQ(0, SizeOf(kName));
}

TEST_F(SharedMemoryStream, WorksAgainWhenTheSegmentIsAsLongAsItWas) {
    Cut(kName, 8);
    EXPECT_FALSE(stream_.Write("a", 1));
    Cut(kName, kSize);
    stream_.Flush();
    EXPECT_TRUE(stream_.Write("a", 1));
}

TEST_F(SharedMemoryStream, GrowsAShorterSegmentAndKeepsALongerOne) {
    stream_ << 42;
    CKorStreamSharedMemory longer(kName, 2 * kSize);
    EXPECT_FALSE(longer.WasCreated());
    EXPECT_EQ(2 * kSize, longer.Size());
    EXPECT_EQ(static_cast<off_t>(2 * kSize), SizeOf(kName));
    int number = 0;
    longer >> number;
    EXPECT_EQ(42, number);
    CKorStreamSharedMemory shorter(kName, 8);
    EXPECT_EQ(8U, shorter.Remaining());
    EXPECT_EQ(static_cast<off_t>(2 * kSize), SizeOf(kName));
    EXPECT_TRUE(longer.Bytes() != nullptr);
}

TEST_F(SharedMemoryStream, LeavesTheSegmentToTheOthersWhenItIsClosed) {
    stream_ << 42;
    stream_.Close();
    EXPECT_FALSE(stream_.IsOpen());
    EXPECT_EQ(0U, stream_.Size());
    EXPECT_EQ(nullptr, stream_.Bytes());
    stream_.Flush();
    stream_ << 43;
    EXPECT_TRUE(stream_.IsFailed());
    stream_.Recover();
    stream_.Close();
    CKorStreamSharedMemory later(kName, kSize);
    int number = 0;
    later >> number;
    EXPECT_EQ(42, number);
}

void expectDead(CKorStreamSharedMemory& stream) {
    EXPECT_FALSE(stream.IsOpen());
    EXPECT_FALSE(stream.WasCreated());
    EXPECT_EQ(0U, stream.Size());
    EXPECT_EQ(nullptr, stream.Bytes());
    int number = 5;
    stream >> number;
    EXPECT_EQ(0, number);
    EXPECT_TRUE(stream.IsFailed());
    stream.Flush();
    EXPECT_FALSE(stream.Write("a", 1));
    stream.Flush();
    EXPECT_FALSE(stream.Write("", 0));
    EXPECT_FALSE(stream.Replace("", 0));
    stream.Recover();
}

TEST_F(SharedMemoryStream, ThatCannotBeOpenedRefusesEverything) {
    ASSERT_EQ(0, mkdir(PathOf("directory").c_str(), 0700));
    CKorStreamSharedMemory directory("directory", kSize);
    expectDead(directory);
    CKorStreamSharedMemory nameless(nullptr, kSize);
    expectDead(nameless);
    CKorStreamSharedMemory empty("empty", 0);
    expectDead(empty);
    const oam::test::FileSizeLimit full(kSize);
    CKorStreamSharedMemory large("large", kSize + 1);
    expectDead(large);
}

}  // namespace
