// One board's record, and the image of all of them that a writer builds.
#include <gmock/gmock.h>

#include <cstring>
#include <string>
#include <vector>

#include "objects/shadow.h"

namespace oam::test {
namespace {

TEST(ShadowRecord, IsEmptyByDefault) {
    const CBoardIDShadow record;
    EXPECT_STREQ(record.name, "");
    EXPECT_EQ(record.number, 0u);
    EXPECT_STREQ(record.driverName, "");
    EXPECT_STREQ(record.driverBoardId, "");
    EXPECT_EQ(record.isALaw, 0);
}

TEST(ShadowRecord, HasEveryByteInItsPlace) {
    const CBoardIDShadow record("Name", 0x01020304, "Driver", "Id", true);
    std::string expected(332, '\0');
    expected.replace(0, 4, "Name");
    expected.replace(132, 4, "\x04\x03\x02\x01");
    expected.replace(136, 6, "Driver");
    expected.replace(265, 2, "Id");
    expected[330] = 1;
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&record), sizeof record), expected)
        << "padding included: nothing of this process leaks into the segment";
}

TEST(ShadowRecord, CutsTextsToWhatFits) {
    for (size_t length : {64u, 65u, 128u, 129u, 500u}) {
        const std::string text(length, 'x');
        const CBoardIDShadow record(text.c_str(), 1, text.c_str(), text.c_str(), false);
        EXPECT_EQ(record.name, std::string(std::min<size_t>(length, 128), 'x'));
        EXPECT_EQ(record.driverName, std::string(std::min<size_t>(length, 128), 'x'));
        EXPECT_EQ(record.driverBoardId, std::string(std::min<size_t>(length, 64), 'x'));
    }
}

TEST(ShadowRecord, EndsTextsThatAnotherProcessLeftOpen) {
    CBoardIDShadow record;
    memset(static_cast<void*>(&record), 'x', sizeof record);
    record.Terminate();
    EXPECT_EQ(strlen(record.name), 128u);
    EXPECT_EQ(strlen(record.driverName), 128u);
    EXPECT_EQ(strlen(record.driverBoardId), 64u);
}

class Image : public ::testing::Test {
  protected:
    static CBoardIDShadow Record(unsigned number) {
        return {("B" + std::to_string(number)).c_str(), number, "", "", false};
    }
    static std::string BytesOf(ShadowImage& image) {
        return {reinterpret_cast<const char*>(image.Bytes()), image.Size()};
    }
    static CBoardIDsShadow::Contents ContentsOf(ShadowImage& image) {
        return CBoardIDsShadow::Contents(image.Bytes());
    }
};

TEST_F(Image, OfNoBoardsIsACountAndAFlag) {
    ShadowImage image(false);
    EXPECT_EQ(BytesOf(image), std::string(5, '\0'));
    ShadowImage flagged(true);
    EXPECT_EQ(BytesOf(flagged), std::string("\0\0\0\0\1", 5));
}

TEST_F(Image, HoldsTheRecordsInOrderAndTheFlagBehindThem) {
    ShadowImage image(true);
    image.Add(Record(1));
    image.Add(Record(2));
    const std::string bytes = BytesOf(image);
    ASSERT_EQ(bytes.size(), 4u + 2 * 332 + 1);
    EXPECT_EQ(bytes.substr(0, 4), std::string("\2\0\0\0", 4));
    EXPECT_STREQ(bytes.c_str() + 4, "B1");
    EXPECT_STREQ(bytes.c_str() + 4 + 332, "B2");
    EXPECT_EQ(bytes.back(), '\1');
}

TEST_F(Image, HoldsThirtyOneBoardsAndNoMore) {
    ShadowImage image(true);
    for (unsigned i = 0; i < 40; ++i) image.Add(Record(i));
    EXPECT_EQ(image.Size(), 4u + 31 * 332 + 1);
    EXPECT_LE(image.Size(), size_t{kShadowSize});
    const auto contents = ContentsOf(image);
    EXPECT_EQ(contents.Count(), 31);
    EXPECT_STREQ(contents.At(30).name, "B30");
    EXPECT_TRUE(contents.IsUsingVxPlugin());
}

TEST_F(Image, MayBeAskedForItsBytesBetweenAdditions) {
    ShadowImage image(true);
    image.Add(Record(1));
    (void)image.Bytes();
    image.Add(Record(2));
    EXPECT_EQ(ContentsOf(image).Count(), 2);
    EXPECT_STREQ(ContentsOf(image).At(1).name, "B2");
    EXPECT_TRUE(ContentsOf(image).IsUsingVxPlugin());
}

// ---- Searching what lies in a segment

class Contents : public ::testing::Test {
  protected:
    void Add(const char* name, unsigned number, const char* driver = "", const char* id = "") {
        image.Add(CBoardIDShadow(name, number, driver, id, false));
    }
    // The index that a search writes, behind "found " or "missed ".
    template <class Find>
    std::string Found(Find find) {
        const CBoardIDsShadow::Contents contents(image.Bytes());
        int index = -1;
        const bool found = find(contents, &index);
        return (found ? "found " : "missed ") + std::to_string(index);
    }
    std::string ByName(const char* name) {
        return Found([=](const auto& contents, int* i) { return contents.FindByName(name, i); });
    }
    std::string ByNumber(unsigned number) {
        return Found([=](const auto& contents, int* i) { return contents.FindByNumber(number, i); });
    }
    std::string ByDriver(const char* driver, const char* id) {
        return Found(
            [=](const auto& contents, int* i) { return contents.FindByDriverIDs(driver, id, i); });
    }

    ShadowImage image{false};
};

TEST_F(Contents, NameIsFoundWithoutRegardToCaseOrGetsItsPosition) {
    EXPECT_EQ(ByName("b"), "missed 0");
    for (const char* name : {"alpha", "Bravo", "CHARLIE", "delta"}) Add(name, 0);
    EXPECT_EQ(ByName("ALPHA"), "found 0");
    EXPECT_EQ(ByName("charlie"), "found 2");
    EXPECT_EQ(ByName("Delta"), "found 3");
    EXPECT_EQ(ByName("a"), "missed 0");
    EXPECT_EQ(ByName("bz"), "missed 2");
    EXPECT_EQ(ByName("z"), "missed 4");
}

TEST_F(Contents, FirstOfSeveralNumbersWins) {
    Add("a", 1);
    Add("b", 2);
    Add("c", 2);
    EXPECT_EQ(ByNumber(2), "found 1");
    EXPECT_EQ(ByNumber(3), "missed 3");
}

TEST_F(Contents, DriverNeedsBothTextsWithoutRegardToCase) {
    Add("a", 1, "AG", "1");
    Add("b", 2, "ag", "2");
    Add("c", 3, "AG", "2");
    EXPECT_EQ(ByDriver("ag", "2"), "found 1");
    EXPECT_EQ(ByDriver("AG", "1"), "found 0");
    EXPECT_EQ(ByDriver("AG", "3"), "missed 3");
    EXPECT_EQ(ByDriver("", ""), "missed 3");
}

TEST_F(Contents, OfACountThatMakesNoSenseAreNoContents) {
    for (int32_t count : {-1, 32, INT32_MAX, INT32_MIN}) {
        unsigned char bytes[kShadowSize] = {};
        memcpy(bytes, &count, sizeof count);
        EXPECT_FALSE(CBoardIDsShadow::Contents(bytes).IsValid()) << count;
    }
    EXPECT_FALSE(CBoardIDsShadow::Contents(nullptr).IsValid());
}

TEST_F(Contents, GiveTerminatedCopies) {
    unsigned char bytes[kShadowSize];
    memset(bytes, 'x', sizeof bytes);
    const int32_t count = 31;
    memcpy(bytes, &count, sizeof count);
    const CBoardIDsShadow::Contents contents(bytes);
    ASSERT_TRUE(contents.IsValid());
    EXPECT_EQ(strlen(contents.At(30).name), 128u);
    EXPECT_EQ(strlen(contents.At(30).driverBoardId), 64u);
    EXPECT_TRUE(contents.IsUsingVxPlugin()) << "any byte but zero";
}

}  // namespace
}  // namespace oam::test
