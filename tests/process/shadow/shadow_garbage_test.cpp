// Segments that no writer of ours has left: every reader answers with a code, reads nothing beyond
// the segment and writes nothing beyond its caller's buffer.
#include <cstring>
#include <limits>
#include <random>

#include "oam/shadow.h"
#include "reader_process.h"
#include "segment.h"
#include "support/installation.h"

#include <gmock/gmock.h>

namespace oam::test {

namespace {

using ::testing::AnyOf;
using ::testing::Each;
using ::testing::Values;

constexpr unsigned kNone = OAMERR_NOT_FOUND;
constexpr unsigned kUnreadable = OAMERR_NOT_ENOUGH_MEMORY;

// A caller's buffer with a guard behind it.
struct Guarded {
    explicit Guarded(unsigned wanted) : size(wanted), bytes(wanted + kGuard, '#') {}
    ~Guarded() { EXPECT_EQ(std::string(bytes.data() + size, kGuard), std::string(kGuard, '#')); }
    // A text that was answered ends within its buffer.
    unsigned Checked(unsigned code) const {
        if (code == OAM_SUCCESS) {
            EXPECT_NE(std::memchr(bytes.data(), '\0', size), nullptr);
        }
        return code;
    }
    static constexpr size_t kGuard = 16;
    unsigned size;
    std::vector<char> bytes;
};

// Every reader's code, with buffers small and large and positions and keys of all kinds.
std::vector<unsigned> codesOfAll() {
    std::vector<unsigned> codes;
    for (unsigned size : {0u, 1u, 5u, 64u, 65u, 128u, 129u, 300u}) {
        for (int index : {-1, 0, 1, 5, 30, 31, 32, 1000, std::numeric_limits<int>::max()}) {
            Guarded name(size);
            codes.push_back(name.Checked(oamShadowBoardEnum(0, index, name.bytes.data(), size)));
        }
        for (unsigned number : {0u, 0xFFFFFFFFu, 0x41414141u, 0x7F7F7F7Fu}) {
            Guarded name(size);
            codes.push_back(
                name.Checked(oamShadowBoardLookupByNumber(0, number, name.bytes.data(), size)));
        }
        for (const std::string& key :
             {std::string(), std::string(129, 'A'), std::string(500, 'A')}) {
            Guarded name(size);
            codes.push_back(name.Checked(oamShadowBoardLookupByDriverIDs(
                0, key.c_str(), key.c_str(), name.bytes.data(), size)));
            Guarded driver(size);
            Guarded id(size);
            const unsigned code = oamShadowBoardGetDriverIDs(0, key.c_str(), driver.bytes.data(),
                                                             size, id.bytes.data(), size);
            (void)driver.Checked(code);
            codes.push_back(id.Checked(code));
            unsigned number = 0;
            bool aLaw = false;
            codes.push_back(oamShadowBoardGetNumber(0, key.c_str(), &number));
            codes.push_back(oamShadowBoardIsUsingALaw(0, key.c_str(), &aLaw));
        }
    }
    bool vxPlugin = false;
    codes.push_back(oamShadowBoardGetIsUsingVxPlugin(0, &vxPlugin));
    return codes;
}

class ShadowGarbage : public testing::Test {
  protected:
    void Attach(const std::string& bytes) {
        segment.Make(bytes);
        ASSERT_EQ(oamShadowInit(), OAM_SUCCESS);
    }
    void TearDown() override { EXPECT_EQ(oamShadowExit(), OAM_SUCCESS); }

    const Installation home;
    const Segment segment{home.Path(kSegmentFile)};
};

class GarbageCount : public ShadowGarbage, public testing::WithParamInterface<int32_t> {};

TEST_P(GarbageCount, IsAnsweredWithACode) {
    Attach(SegmentBytes({{"A", 0, "", "", false}, {"B", 1, "", "", false}}, true, GetParam()));
    EXPECT_THAT(codesOfAll(), Each(AnyOf(kNone, kUnreadable)));
}

TEST_P(GarbageCount, MayComeWhileAReaderIsAttached) {
    Attach(SegmentBytes({{"A", 0, "", "", false}}));
    EXPECT_EQ(oamShadowBoardGetNumber(0, "A", std::make_unique<unsigned>().get()), OAM_SUCCESS);
    segment.Overwrite(std::string(reinterpret_cast<const char*>(&GetParam()), sizeof(int32_t)));
    EXPECT_THAT(codesOfAll(), Each(AnyOf(kNone, kUnreadable)));
}

TEST_P(GarbageCount, DoesNotEndAReadersProcess) {
    segment.Make(SegmentBytes({{"A", 0, "", "", false}}, true, GetParam()));
    ReaderProcess reader(ReaderProcess::kAttached);
    EXPECT_THAT(reader.Code({"enum", "0", "200"}), AnyOf(kNone, kUnreadable));
    EXPECT_THAT(reader.Code({"number-of", "A"}), AnyOf(kNone, kUnreadable));
    EXPECT_THAT(reader.Code({"vx"}), AnyOf(kNone, kUnreadable));
    EXPECT_EQ(reader.Process().Finish(), 0);
}

INSTANTIATE_TEST_SUITE_P(Values, GarbageCount,
                         Values(-1, std::numeric_limits<int32_t>::min(), 32, 33, 1000, 0x01000000,
                                std::numeric_limits<int32_t>::max(), 12936962));

TEST_F(ShadowGarbage, OfTextsWithoutTerminatorsStaysWithinTheRecord) {
    const ShadowRecord unending{std::string(129, 'A'), 0x41414141, std::string(129, 'A'),
                                std::string(65, 'A'), true};
    std::string bytes = SegmentBytes({unending, unending, unending});
    for (size_t i = 0; i < 3; ++i) {
        bytes.replace(sizeof(int32_t) + i * kRecordSize, kRecordSize, RecordBytes(unending, 'A'));
    }
    std::fill(bytes.begin() + sizeof(int32_t) + 3 * kRecordSize, bytes.end(), 'A');
    Attach(bytes);
    EXPECT_THAT(codesOfAll(), Each(AnyOf(unsigned{OAM_SUCCESS}, kNone, kUnreadable)));
    Guarded name(4096);
    if (oamShadowBoardEnum(0, 1, name.bytes.data(), name.size) == OAM_SUCCESS) {
        EXPECT_LE(std::strlen(name.bytes.data()), 128u);
    }
    Guarded driver(4096);
    Guarded id(4096);
    if (oamShadowBoardGetDriverIDs(0, std::string(128, 'A').c_str(), driver.bytes.data(),
                                   driver.size, id.bytes.data(), id.size) == OAM_SUCCESS) {
        EXPECT_LE(std::strlen(driver.bytes.data()), 128u);
        EXPECT_LE(std::strlen(id.bytes.data()), 64u);
    }
}

TEST_F(ShadowGarbage, AtTheSegmentsEndStaysWithinTheSegment) {
    const ShadowRecord unending{std::string(129, 'A'), 1, std::string(129, 'A'),
                                std::string(65, 'A'), true};
    Attach(SegmentBytes(std::vector<ShadowRecord>(kMostRecords, unending)));
    EXPECT_THAT(codesOfAll(), Each(AnyOf(unsigned{OAM_SUCCESS}, kNone, kUnreadable)));
}

TEST_F(ShadowGarbage, OfAnyBytesIsAnsweredWithACode) {
    std::mt19937 random(20021);
    Attach(std::string(kSegmentSize, '\0'));
    for (int round = 0; round < 40; ++round) {
        std::string bytes(kSegmentSize, '\0');
        for (char& byte : bytes) byte = static_cast<char>(random());
        const auto count = static_cast<int32_t>(random() % 33);
        if (round % 4 != 0) std::memcpy(bytes.data(), &count, sizeof count);
        segment.Overwrite(bytes);
        EXPECT_THAT(codesOfAll(), Each(AnyOf(unsigned{OAM_SUCCESS}, kNone, kUnreadable)));
    }
}

TEST_F(ShadowGarbage, OfUnsortedNamesIsSearchedWithoutHarm) {
    Attach(SegmentBytes({{"z", 0, "", "", false},
                         {"a", 1, "", "", false},
                         {"m", 2, "", "", false},
                         {"a", 3, "", "", false},
                         {"", 4, "", "", false}}));
    unsigned number = 0;
    for (const char* name : {"z", "a", "m", "", "q"}) {
        EXPECT_THAT(unsigned{oamShadowBoardGetNumber(0, name, &number)},
                    AnyOf(unsigned{OAM_SUCCESS}, kNone));
    }
}

TEST_F(ShadowGarbage, IsOverWhenTheContentIsRightAgain) {
    Attach(SegmentBytes({}, false, -5));
    EXPECT_THAT(codesOfAll(), Each(AnyOf(kNone, kUnreadable)));
    segment.Overwrite(SegmentBytes({{"Board", 6, "", "", false}}));
    unsigned number = 0;
    EXPECT_EQ(oamShadowBoardGetNumber(0, "Board", &number), OAM_SUCCESS);
    EXPECT_EQ(number, 6u);
}

class CutSegment : public ShadowGarbage, public testing::WithParamInterface<size_t> {};

TEST_P(CutSegment, IsAnsweredWithACodeByThoseWhoAreAttached) {
    Attach(SegmentBytes(std::vector<ShadowRecord>(kMostRecords, {"Board", 1, "d", "i", false})));
    EXPECT_EQ(oamShadowBoardGetNumber(0, "Board", std::make_unique<unsigned>().get()), OAM_SUCCESS);
    segment.Truncate(GetParam());
    EXPECT_THAT(codesOfAll(), Each(AnyOf(kNone, kUnreadable)));
}

TEST_P(CutSegment, DoesNotEndAReadersProcess) {
    segment.Make(SegmentBytes({{"Board", 1, "d", "i", false}}));
    ReaderProcess reader(ReaderProcess::kAttached);
    EXPECT_EQ(reader.NumberOf("Board"), Is("1"));
    segment.Truncate(GetParam());
    EXPECT_THAT(reader.Code({"number-of", "Board"}), AnyOf(kNone, kUnreadable));
    EXPECT_THAT(reader.Code({"vx"}), AnyOf(kNone, kUnreadable));
    EXPECT_EQ(reader.Process().Finish(), 0);
}

TEST_P(CutSegment, IsAttachedWithoutHarm) {
    segment.Make(SegmentBytes({{"Board", 1, "d", "i", false}}).substr(0, GetParam()));
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    EXPECT_THAT(codesOfAll(), Each(AnyOf(unsigned{OAM_SUCCESS}, kNone, kUnreadable)));
    EXPECT_EQ(segment.Bytes().size(), kSegmentSize);
}

INSTANTIATE_TEST_SUITE_P(To, CutSegment, Values(0u, 1u, 4u, 100u, 4096u, kSegmentSize - 1));

}  // namespace

}  // namespace oam::test
