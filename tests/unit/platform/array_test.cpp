#include "korcore/array.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "shared_directory.h"

namespace {

// A record whose memory runs out when the test wants it to.
struct Record {
    int number = -1;
    char name[12] = "none";

    static inline int s_allocations = 0;
    static inline int s_allowed = INT_MAX;
    static void* operator new[](size_t size, const std::nothrow_t& nothrow) noexcept {
        if (s_allocations >= s_allowed) return nullptr;
        ++s_allocations;
        return ::operator new[](size, nothrow);
    }
    static void operator delete[](void* memory) noexcept { ::operator delete[](memory); }
};

Record recordOf(int number) {
    Record made;
    made.number = number;
    std::strcpy(made.name, "board");
    return made;
}

// No more than so many allocations of records for its life.
class Fuse {
  public:
    explicit Fuse(int allowed) {
        Record::s_allocations = 0;
        Record::s_allowed = allowed;
    }
    ~Fuse() { Record::s_allowed = INT_MAX; }
};

std::vector<int> numbersOf(const CKorArray<Record>& array) {
    std::vector<int> numbers;
    for (int i = 0; i < array.GetSize(); ++i) numbers.push_back(array[i].number);
    return numbers;
}

TEST(Array, IsEmptyAtFirst) {
    const CKorArray<Record> array(5, 3);
    EXPECT_EQ(0, array.GetSize());
    EXPECT_EQ(nullptr, array.GetAt(0));
}

TEST(Array, AddsBehindTheLast) {
    CKorArray<Record> array(5, 3);
    std::vector<int> expected;
    for (int i = 0; i < 40; ++i) {
        EXPECT_TRUE(array.Add(recordOf(i)));
        expected.push_back(i);
    }
    EXPECT_EQ(expected, numbersOf(array));
    EXPECT_STREQ("board", array.GetAt(39)->name);
}

TEST(Array, InsertsAnywhereUpToTheEnd) {
    CKorArray<Record> array(1, 1);
    EXPECT_TRUE(array.InsertAt(0, recordOf(1)));
    EXPECT_TRUE(array.InsertAt(0, recordOf(0)));
    EXPECT_TRUE(array.InsertAt(2, recordOf(3)));
    EXPECT_TRUE(array.InsertAt(2, recordOf(2)));
    EXPECT_FALSE(array.InsertAt(5, recordOf(9)));
    EXPECT_FALSE(array.InsertAt(-1, recordOf(9)));
    EXPECT_EQ((std::vector<int>{0, 1, 2, 3}), numbersOf(array));
}

TEST(Array, GivesNothingOutsideItsSize) {
    CKorArray<Record> array(5, 3);
    ASSERT_TRUE(array.Add(recordOf(1)));
    EXPECT_EQ(1, array.GetAt(0)->number);
    EXPECT_EQ(nullptr, array.GetAt(1));
    EXPECT_EQ(nullptr, array.GetAt(-1));
    EXPECT_EQ(nullptr, array.GetAt(INT_MIN));
}

TEST(Array, LetsItsRecordsBeChanged) {
    CKorArray<Record> array(5, 3);
    ASSERT_TRUE(array.Add(recordOf(1)));
    array[0].number = 2;
    EXPECT_EQ(2, array.GetAt(0)->number);
}

TEST(Array, AddsARecordOfItsOwnWhenItIsFull) {
    CKorArray<Record> array(1, 1);
    ASSERT_TRUE(array.Add(recordOf(7)));
    for (int i = 0; i < 10; ++i) ASSERT_TRUE(array.InsertAt(0, array[array.GetSize() - 1]));
    EXPECT_EQ(std::vector<int>(11, 7), numbersOf(array));
}

TEST(Array, IsEmptiedAndFilledAgainInTheSameRoom) {
    CKorArray<Record> array(5, 3);
    for (int i = 0; i < 8; ++i) ASSERT_TRUE(array.Add(recordOf(i)));
    array.DeleteAll();
    EXPECT_EQ(0, array.GetSize());
    EXPECT_EQ(nullptr, array.GetAt(0));
    const Fuse none(0);
    for (int i = 0; i < 8; ++i) EXPECT_TRUE(array.Add(recordOf(i)));
    EXPECT_FALSE(array.Add(recordOf(8)));
}

TEST(Array, AllocatesItsInitialRoomAtOnceAndThenByTheStep) {
    const Fuse many(INT_MAX);
    CKorArray<Record> array(5, 3);
    std::vector<int> allocations;
    for (int i = 0; i < 12; ++i) {
        ASSERT_TRUE(array.Add(recordOf(i)));
        allocations.push_back(Record::s_allocations);
    }
    EXPECT_EQ((std::vector<int>{1, 1, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4}), allocations);
}

TEST(Array, IsAsItWasWhenMemoryRunsOut) {
    CKorArray<Record> array(2, 2);
    ASSERT_TRUE(array.Add(recordOf(1)));
    ASSERT_TRUE(array.Add(recordOf(2)));
    {
        const Fuse none(0);
        EXPECT_FALSE(array.Add(recordOf(3)));
        EXPECT_FALSE(array.InsertAt(0, recordOf(3)));
        EXPECT_EQ((std::vector<int>{1, 2}), numbersOf(array));
    }
    EXPECT_TRUE(array.InsertAt(0, recordOf(0)));
    EXPECT_EQ((std::vector<int>{0, 1, 2}), numbersOf(array));
}

TEST(Array, RecoversFromHavingNoInitialRoom) {
    std::unique_ptr<CKorArray<Record>> array;
    {
        const Fuse none(0);
        array = std::make_unique<CKorArray<Record>>(5, 3);
        EXPECT_FALSE(array->Add(recordOf(1)));
    }
    EXPECT_TRUE(array->Add(recordOf(1)));
    EXPECT_EQ(std::vector<int>{1}, numbersOf(*array));
}

TEST(Array, BearsNonsenseForItsRoom) {
    CKorArray<Record> array(-5, -3);
    EXPECT_TRUE(array.Add(recordOf(1)));
    EXPECT_TRUE(array.Add(recordOf(2)));
    EXPECT_EQ((std::vector<int>{1, 2}), numbersOf(array));
    CKorArray<Record> wide(0, INT_MAX);
    const Fuse none(0);
    EXPECT_FALSE(wide.Add(recordOf(1)));
}

class StreamableArray : public SharedDirectory {
  protected:
    static constexpr size_t kRecords = 4;
    static constexpr size_t kSize = sizeof(int) + kRecords * sizeof(Record) + 1;

    void Fill(int count) {
        array_.DeleteAll();
        for (int i = 0; i < count; ++i) ASSERT_TRUE(array_.Add(recordOf(i)));
    }
    void PutCount(int count) const {
        Overwrite("segment", 0, std::string(reinterpret_cast<const char*>(&count), sizeof count));
    }

    CKorStreamSharedMemory stream_{"segment", kSize};
    CKorStreamableArray<Record> array_{5, 3};
};

TEST_F(StreamableArray, IsItsCountAndItsRawRecords) {
    Fill(2);
    stream_ << array_;
    EXPECT_FALSE(stream_.IsFailed());
    EXPECT_EQ(kSize - 4 - 2 * sizeof(Record), stream_.Remaining());
    const std::string bytes = ReadFile("segment");
    int count = 0;
    std::memcpy(&count, bytes.data(), sizeof count);
    EXPECT_EQ(2, count);
    EXPECT_EQ(0, std::memcmp(bytes.data() + 4, &array_[0], 2 * sizeof(Record)));
}

TEST_F(StreamableArray, ReadsBackWhatItWroteInPlaceOfWhatItHad) {
    Fill(3);
    stream_ << array_ << true;
    stream_.Flush();
    CKorStreamableArray<Record> other(5, 3);
    ASSERT_TRUE(other.Add(recordOf(99)));
    bool flag = false;
    stream_ >> other >> flag;
    EXPECT_TRUE(flag);
    EXPECT_FALSE(stream_.IsFailed());
    EXPECT_EQ((std::vector<int>{0, 1, 2}), numbersOf(other));
    EXPECT_STREQ("board", other[2].name);
}

TEST_F(StreamableArray, ReadsAnEmptySegmentAsEmpty) {
    Fill(3);
    stream_ >> array_;
    EXPECT_EQ(0, array_.GetSize());
    EXPECT_FALSE(stream_.IsFailed());
}

TEST_F(StreamableArray, FillsTheStreamToItsEnd) {
    Fill(kRecords);
    stream_ << array_ << true;
    EXPECT_FALSE(stream_.IsFailed());
    stream_.Flush();
    stream_ >> array_;
    EXPECT_EQ(static_cast<int>(kRecords), array_.GetSize());
}

TEST_F(StreamableArray, ThatDoesNotFitIsRefusedWhole) {
    Fill(2);
    stream_ << array_;
    const std::string before = ReadFile("segment");
    stream_.Flush();
    Fill(kRecords + 1);
    stream_ << array_;
    EXPECT_TRUE(stream_.IsFailed());
    EXPECT_EQ(before, ReadFile("segment"));
    CKorStreamSharedMemory tiny("tiny", 3);
    array_.DeleteAll();
    tiny << array_;
    EXPECT_TRUE(tiny.IsFailed());
}

TEST_F(StreamableArray, WithAGarbageCountIsEmptyAndFailsTheStream) {
    for (const int count : {-1, INT_MIN, INT_MAX, INT_MAX / 16, static_cast<int>(kRecords) + 1}) {
        PutCount(count);
        stream_.Flush();
        Fill(2);
        const Fuse none(0);
        stream_ >> array_;
        EXPECT_TRUE(stream_.IsFailed()) << count;
        EXPECT_EQ(0, array_.GetSize()) << count;
        EXPECT_EQ(0, Record::s_allocations);
    }
}

TEST_F(StreamableArray, OnAFailedStreamIsEmpty) {
    Fill(2);
    stream_.Fail();
    stream_ >> array_;
    EXPECT_EQ(0, array_.GetSize());
}

TEST_F(StreamableArray, ReadWithoutEnoughMemoryIsEmptyAndNotWrittenBack) {
    Fill(kRecords);
    stream_ << array_;
    const std::string before = ReadFile("segment");
    CKorStreamableArray<Record> other(1, 1);
    {
        const Fuse one(1);
        stream_.Flush();
        stream_ >> other;
    }
    EXPECT_TRUE(stream_.IsFailed());
    EXPECT_EQ(0, other.GetSize());
    stream_.Flush();
    stream_ << other;
    EXPECT_TRUE(stream_.IsFailed());
    EXPECT_EQ(before, ReadFile("segment"));
    other.DeleteAll();
    stream_.Flush();
    stream_ << other;
    EXPECT_FALSE(stream_.IsFailed());
    stream_.Flush();
    stream_ >> array_;
    EXPECT_EQ(0, array_.GetSize());
}

}  // namespace
