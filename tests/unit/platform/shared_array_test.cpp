// Arrays in a shared segment: several objects, threads and processes on one of them.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "child_process.h"
#include "korcore/array.h"
#include "shared_directory.h"

namespace {

struct Record {
    int number = -1;
    char name[28] = "none";
};
using SharedRecords = CKorSharedMemoryArray<Record>;

constexpr char kName[] = "records";
constexpr int kRoom = 10;
constexpr int kSize = sizeof(int) + kRoom * sizeof(Record) + 1;

Record recordOf(int number) {
    Record made;
    made.number = number;
    return made;
}

// Carries a flag behind the records, as a derived array may.
class FlaggedRecords : public SharedRecords {
  public:
    FlaggedRecords() noexcept : SharedRecords(kName, kSize) {}

    bool prefix() noexcept override {
        if (!SharedRecords::prefix()) return false;
        Stream() >> flag_;
        return true;
    }
    void suffix() noexcept override {
        Store();
        Stream() << flag_;
        Unlock();
    }
    bool GetFlag() noexcept {
        if (!prefix()) return false;
        const bool flag = flag_;
        suffix();
        return flag;
    }
    void SetFlag(bool flag) noexcept {
        if (!prefix()) return;
        flag_ = flag;
        suffix();
    }

  private:
    bool flag_ = false;
};

class SharedArray : public SharedDirectory {
  protected:
    static std::vector<int> NumbersOf(SharedRecords& records) {
        std::vector<int> numbers;
        if (!records.Lock()) return numbers;
        for (int i = 0; i < records.GetSize(); ++i) numbers.push_back(records[i].number);
        records.Unlock();
        return numbers;
    }
    void PutCount(int count) const {
        Overwrite(kName, 0, std::string(reinterpret_cast<const char*>(&count), sizeof count));
    }
};

static_assert(std::has_virtual_destructor_v<SharedRecords>);

TEST_F(SharedArray, IsASegmentAJournalAndALockOfTheRightName) {
    SharedRecords records(kName, kSize);
    EXPECT_STREQ("recordsCKorSharedMemoryArray", SharedRecords::getMutexName(kName).text);
    EXPECT_EQ(kSize, SizeOf(kName));
    EXPECT_GT(SizeOf("recordsCKorSharedMemoryArray"), 0);
    EXPECT_EQ(3U, FileCount());
    EXPECT_EQ(0, records.GetSize());
}

TEST_F(SharedArray, ShowsEveryObjectThePresentContents) {
    SharedRecords writer(kName, kSize);
    SharedRecords reader(kName, kSize);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(writer.Add(recordOf(i)));
    EXPECT_EQ((std::vector<int>{0, 1, 2}), NumbersOf(reader));
    EXPECT_TRUE(reader.Add(recordOf(3)));
    EXPECT_EQ(4, writer.GetSize());
    EXPECT_EQ(3, writer[3].number);
    EXPECT_TRUE(writer.DeleteAll());
    EXPECT_EQ(0, reader.GetSize());
}

TEST_F(SharedArray, OutlivesItsObjects) {
    { EXPECT_TRUE(SharedRecords(kName, kSize).Add(recordOf(5))); }
    SharedRecords later(kName, kSize);
    EXPECT_EQ(std::vector<int>{5}, NumbersOf(later));
}

TEST_F(SharedArray, ShowsAnotherProcessWhatItHolds) {
    SharedRecords records(kName, kSize);
    ASSERT_TRUE(records.Add(recordOf(1)));
    ChildProcess other([] {
        SharedRecords found(kName, kSize);
        if (NumbersOf(found) != std::vector<int>{1}) return 1;
        return found.Add(recordOf(2)) ? 0 : 2;
    });
    EXPECT_EQ(0, other.Await());
    EXPECT_EQ((std::vector<int>{1, 2}), NumbersOf(records));
}

TEST_F(SharedArray, KeepsOthersOutWhileItIsLocked) {
    SharedRecords records(kName, kSize);
    ASSERT_TRUE(records.Lock());
    ASSERT_TRUE(records.Lock());
    ASSERT_TRUE(records.DeleteAll());
    Baton started;
    ChildProcess other([&] {
        SharedRecords* const found = new SharedRecords(kName, kSize);
        started.Pass();
        const bool full = found->GetSize() == 2;
        delete found;
        return full ? 0 : 1;
    });
    EXPECT_TRUE(records.Add(recordOf(1)));
    EXPECT_TRUE(records.Add(recordOf(2)));
    records.Unlock();
    records.Unlock();
    EXPECT_TRUE(started.Await());
    EXPECT_EQ(0, other.Await());
}

TEST_F(SharedArray, GivesADefaultRecordOutsideItsSize) {
    SharedRecords records(kName, kSize);
    ASSERT_TRUE(records.Add(recordOf(1)));
    for (const int index : {-1, 1, INT_MIN, INT_MAX}) EXPECT_EQ(-1, records[index].number);
}

TEST_F(SharedArray, RefusesWhatDoesNotFitAndKeepsWhatItHad) {
    SharedRecords records(kName, kSize);
    for (int i = 0; i < kRoom; ++i) EXPECT_TRUE(records.Add(recordOf(i)));
    EXPECT_FALSE(records.Add(recordOf(kRoom)));
    EXPECT_EQ(kRoom, records.GetSize());
    EXPECT_EQ(kRoom - 1, records[kRoom - 1].number);
}

TEST_F(SharedArray, WithAGarbageCountIsEmptyAndHealsItself) {
    SharedRecords records(kName, kSize);
    for (const int count : {-1, INT_MIN, INT_MAX, kRoom + 1}) {
        ASSERT_TRUE(records.Add(recordOf(1)));
        PutCount(count);
        EXPECT_EQ(0, records.GetSize()) << count;
        EXPECT_TRUE(records.Add(recordOf(2)));
        EXPECT_EQ(std::vector<int>{2}, NumbersOf(records));
        EXPECT_TRUE(records.DeleteAll());
    }
}

TEST_F(SharedArray, CarriesWhatADerivedOneAdds) {
    FlaggedRecords writer, reader;
    EXPECT_FALSE(reader.GetFlag());
    ASSERT_TRUE(writer.Add(recordOf(1)));
    writer.SetFlag(true);
    EXPECT_TRUE(reader.GetFlag());
    ASSERT_TRUE(reader.Add(recordOf(2)));
    EXPECT_TRUE(writer.GetFlag());
    EXPECT_EQ((std::vector<int>{1, 2}), NumbersOf(writer));
    EXPECT_EQ(std::string("\1"), ReadFile(kName).substr(sizeof(int) + 2 * sizeof(Record), 1));
    ASSERT_TRUE(writer.DeleteAll());
    EXPECT_TRUE(reader.GetFlag());
}

TEST_F(SharedArray, IsNotEmptiedByItsMakerWhenAnotherWasQuicker) {
    for (int round = 0; round < 20; ++round) {
        const std::string name = kName + std::to_string(round);
        const auto addOne = [&] {
            return SharedRecords(name.c_str(), kSize).Add(recordOf(1)) ? 0 : 1;
        };
        ChildProcess first(addOne);
        ChildProcess second(addOne);
        EXPECT_EQ(0, addOne());
        EXPECT_EQ(0, first.Await());
        EXPECT_EQ(0, second.Await());
        EXPECT_EQ(3, SharedRecords(name.c_str(), kSize).GetSize());
    }
}

TEST_F(SharedArray, FinishesAReplaceWhoseProcessDied) {
    SharedRecords records(kName, kSize);
    ASSERT_TRUE(records.Add(recordOf(1)));
    {
        CKorStreamSharedMemory stream(kName, kSize);
        const std::string image = ReadFile(kName);
        ASSERT_TRUE(stream.Replace(image.data(), image.size()));
    }
    Overwrite(kName, 0, std::string(kSize, 'x'));
    const uint32_t complete = 0x4B4A524E;
    Overwrite("records.journal", 0, std::string(reinterpret_cast<const char*>(&complete), 4));
    EXPECT_EQ(std::vector<int>{1}, NumbersOf(records));
}

TEST_F(SharedArray, IsSafeForTheThreadsOfAProcess) {
    SharedRecords shared(kName, kSize);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&shared, i] {
            SharedRecords own(kName, kSize);
            SharedRecords& records = i % 2 == 0 ? shared : own;
            for (int round = 0; round < 50; ++round) {
                ASSERT_TRUE(records.Lock());
                const int size = records.GetSize();
                EXPECT_EQ(size, static_cast<int>(NumbersOf(records).size()));
                if (size == kRoom) {
                    EXPECT_TRUE(records.DeleteAll());
                }
                EXPECT_TRUE(records.Add(recordOf(round)));
                records.Unlock();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_GT(shared.GetSize(), 0);
}

TEST_F(SharedArray, HoldsNothingOnceItIsClosed) {
    SharedRecords records(kName, kSize);
    ASSERT_TRUE(records.Add(recordOf(1)));
    records.Close();
    EXPECT_EQ(0, records.GetSize());
    EXPECT_FALSE(records.Add(recordOf(2)));
    EXPECT_FALSE(records.DeleteAll());
    EXPECT_EQ(-1, records[0].number);
    records.Close();
    SharedRecords later(kName, kSize);
    EXPECT_EQ(std::vector<int>{1}, NumbersOf(later));
}

TEST_F(SharedArray, OnASegmentCutShortIsEmptyAndRefuses) {
    SharedRecords records(kName, kSize);
    ASSERT_TRUE(records.Add(recordOf(1)));
    Cut(kName, 2);
    EXPECT_EQ(0, records.GetSize());
    EXPECT_FALSE(records.Add(recordOf(2)));
    EXPECT_FALSE(records.DeleteAll());
    EXPECT_EQ(2, SizeOf(kName));
}

TEST_F(SharedArray, WithoutItsLockIsEmptyAndRefuses) {
    ASSERT_EQ(0, mkdir(PathOf("recordsCKorSharedMemoryArray").c_str(), 0700));
    SharedRecords records(kName, kSize);
    EXPECT_FALSE(records.Lock());
    EXPECT_FALSE(records.Add(recordOf(1)));
    EXPECT_FALSE(records.DeleteAll());
    EXPECT_EQ(0, records.GetSize());
    EXPECT_EQ(-1, records[0].number);
    EXPECT_EQ(std::string(kSize, '\0'), ReadFile(kName));
    records.Close();
    EXPECT_EQ(0, records.GetSize());
}

TEST_F(SharedArray, OfABadNameOrSizeIsEmptyAndRefuses) {
    for (const std::string& name :
         {std::string("a/b"), std::string(300, 'n'), std::string(600, 'n')}) {
        SharedRecords records(name.c_str(), kSize);
        EXPECT_FALSE(records.Add(recordOf(1)));
        EXPECT_EQ(0, records.GetSize());
    }
    EXPECT_FALSE(SharedRecords(nullptr, kSize).Add(recordOf(1)));
    EXPECT_FALSE(SharedRecords(kName, 0).Add(recordOf(1)));
    EXPECT_FALSE(SharedRecords(kName, -1).Add(recordOf(1)));
}

}  // namespace
