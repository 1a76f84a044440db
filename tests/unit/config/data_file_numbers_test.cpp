// The lowest free number, beside a look at every name.
#include "config/data_file_numbers.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

int lowestOf(const std::vector<std::string>& names) {
    for (int number = 0;; ++number) {
        bool taken = false;
        for (const auto& name : names) taken = taken || DataFileNumbers::Of(name.c_str()) == number;
        if (!taken) return number;
    }
}

TEST(DataFileNumbers, ReadWhatFollowsTheWord) {
    EXPECT_EQ(DataFileNumbers::Of("Obj7.xmo"), 7);
    EXPECT_EQ(DataFileNumbers::Of("Obj7x"), 7);
    EXPECT_EQ(DataFileNumbers::Of("Obj.xmo"), -1);
    EXPECT_EQ(DataFileNumbers::Of("obj7.xmo"), -1);
    EXPECT_EQ(DataFileNumbers::Of("Super.xmo"), -1);
    EXPECT_EQ(DataFileNumbers::Of(nullptr), -1);
}

TEST(DataFileNumbers, AreTheLowestAfterAnyAdditionsAndRemovals) {
    std::mt19937 random(5);
    DataFileNumbers numbers;
    std::vector<std::string> names;
    for (int i = 0; i < 3000; ++i) {
        if (names.empty() || random() % 3 != 0) {
            // Some of them twice, and some far away.
            const unsigned number = random() % 10 == 0 ? random() % 5000 : random() % 150;
            names.push_back("Obj" + std::to_string(number) +
                            (random() % 2 == 0 ? ".xmo" : "x.xmo"));
            numbers.Add(names.back().c_str());
        } else {
            std::swap(names[random() % names.size()], names.back());
            numbers.Remove(names.back().c_str());
            names.pop_back();
        }
        ASSERT_EQ(numbers.Lowest(), lowestOf(names)) << i;
    }
    numbers.RemoveAll();
    EXPECT_EQ(numbers.Lowest(), 0);
}

TEST(DataFileNumbers, OfANameThatWasNeverAddedAreLeftAlone) {
    DataFileNumbers numbers;
    numbers.Add("Obj0.xmo");
    numbers.Remove("Obj1.xmo");
    numbers.Remove("Obj999999999.xmo");
    numbers.Add("Obj999999999.xmo");
    EXPECT_EQ(numbers.Lowest(), 1);
}

TEST(DataFileNumbers, AreUnknownOnceMemoryRanOut) {
    DataFileNumbers numbers;
    {
        const AllocationFuse fuse(1);
        numbers.Add("Obj0.xmo");
    }
    EXPECT_EQ(numbers.Lowest(), -1);
    numbers.RemoveAll();
    EXPECT_EQ(numbers.Lowest(), 0);
}

}  // namespace
}  // namespace oam::test
