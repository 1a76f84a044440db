// What the readers answer of a segment that is there.
#include <cstring>

#include "oam/shadow.h"
#include "segment.h"
#include "support/installation.h"
#include "support/objects.h"

#include <gmock/gmock.h>

namespace oam::test {

namespace {

class ShadowReaders : public testing::Test {
  protected:
    void Publish(const std::vector<ShadowRecord>& records, bool vxPlugin = false) {
        segment.Make(SegmentBytes(records, vxPlugin));
        ASSERT_EQ(oamShadowInit(), OAM_SUCCESS);
    }
    void TearDown() override { EXPECT_EQ(oamShadowExit(), OAM_SUCCESS); }

    static Answer Text(unsigned code, const char* text) {
        return {code, code == OAM_SUCCESS ? text : ""};
    }
    static Answer At(int index, unsigned size = 129) {
        char name[129] = "untouched";
        const unsigned code = oamShadowBoardEnum(0, index, name, size);
        if (code != OAM_SUCCESS) {
            EXPECT_STREQ(name, "untouched");
        }
        return Text(code, name);
    }
    static Answer ByNumber(unsigned number, unsigned size = 129) {
        char name[129] = "untouched";
        const unsigned code = oamShadowBoardLookupByNumber(0, number, name, size);
        if (code != OAM_SUCCESS) {
            EXPECT_STREQ(name, "untouched");
        }
        return Text(code, name);
    }
    static Answer ByDriverIDs(const char* driver, const char* id, unsigned size = 129) {
        char name[129] = "untouched";
        const unsigned code = oamShadowBoardLookupByDriverIDs(0, driver, id, name, size);
        if (code != OAM_SUCCESS) {
            EXPECT_STREQ(name, "untouched");
        }
        return Text(code, name);
    }
    static Answer NumberOf(const std::string& name) {
        unsigned number = 4711;
        const unsigned code = oamShadowBoardGetNumber(0, name.c_str(), &number);
        if (code != OAM_SUCCESS) {
            EXPECT_EQ(number, 4711u);
        }
        return Text(code, std::to_string(number).c_str());
    }
    static Answer ALawOf(const std::string& name) {
        bool aLaw = false;
        const unsigned code = oamShadowBoardIsUsingALaw(0, name.c_str(), &aLaw);
        return Text(code, aLaw ? "A-law" : "not");
    }

    const Installation home;
    const Segment segment{home.Path(kSegmentFile)};
};

TEST_F(ShadowReaders, EnumerateByPosition) {
    Publish({{"alpha", 1, "", "", false}, {"Bravo", 0, "", "", false}});
    EXPECT_EQ(At(-1), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(At(0), Is("alpha"));
    EXPECT_EQ(At(1), Is("Bravo"));
    EXPECT_EQ(At(2), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(At(2147483647), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(At(-2147483647 - 1), Fails(OAMERR_NOT_FOUND));
}

TEST_F(ShadowReaders, NeedRoomForTheTerminator) {
    Publish({{"alpha", 1, "drv", "id", false}});
    EXPECT_EQ(At(0, 5), Fails(OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(At(0, 0), Fails(OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(At(0, 6), Is("alpha"));
    EXPECT_EQ(ByNumber(1, 5), Fails(OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(ByNumber(1, 6), Is("alpha"));
    EXPECT_EQ(ByDriverIDs("drv", "id", 5), Fails(OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(ByDriverIDs("drv", "id", 6), Is("alpha"));
}

TEST_F(ShadowReaders, FindTheFirstBoardOfANumber) {
    Publish({{"alpha", 7, "", "", false},
             {"bravo", 4294967295u, "", "", false},
             {"charlie", 7, "", "", false}});
    EXPECT_EQ(ByNumber(7), Is("alpha"));
    EXPECT_EQ(ByNumber(4294967295u), Is("bravo"));
    EXPECT_EQ(ByNumber(0), Fails(OAMERR_NOT_FOUND));
}

TEST_F(ShadowReaders, FindTheFirstBoardOfBothDriverTextsInAnyCase) {
    Publish({{"alpha", 0, "Drv", "1", false},
             {"bravo", 1, "drv", "Two", false},
             {"charlie", 2, "DRV", "two", false}});
    EXPECT_EQ(ByDriverIDs("dRV", "TWO"), Is("bravo"));
    EXPECT_EQ(ByDriverIDs("drv", "1"), Is("alpha"));
    EXPECT_EQ(ByDriverIDs("drv", "3"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(ByDriverIDs("other", "1"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(ByDriverIDs("", ""), Fails(OAMERR_NOT_FOUND));
}

TEST_F(ShadowReaders, FindEveryNameInAnyCase) {
    std::vector<ShadowRecord> records;
    for (unsigned i = 0; i < kMostRecords; ++i) {
        records.push_back({"Board " + std::to_string(10 + i), i, "", "", i % 2 == 1});
    }
    Publish(records);
    for (unsigned i = 0; i < kMostRecords; ++i) {
        const std::string name = "bOARD " + std::to_string(10 + i);
        EXPECT_EQ(NumberOf(name), Is(std::to_string(i)));
        EXPECT_EQ(ALawOf(name), Is(i % 2 == 1 ? "A-law" : "not"));
    }
    for (const char* unknown : {"", "Board", "Board 1", "Board 100", "Board 99", "A", "Z"}) {
        EXPECT_EQ(NumberOf(unknown), Fails(OAMERR_NOT_FOUND)) << unknown;
        EXPECT_EQ(ALawOf(unknown), Fails(OAMERR_NOT_FOUND)) << unknown;
    }
}

TEST_F(ShadowReaders, FindANameOf128Characters) {
    const std::string longest(128, 'n');
    Publish({{longest, 9, std::string(128, 'd'), std::string(64, 'i'), false}});
    EXPECT_EQ(At(0), Is(longest));
    EXPECT_EQ(At(0, 128), Fails(OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(NumberOf(longest), Is("9"));
    EXPECT_EQ(NumberOf(longest + "n"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(ByDriverIDs(std::string(128, 'd').c_str(), std::string(64, 'i').c_str()),
              Is(longest));
}

TEST_F(ShadowReaders, CopyTheDriverNameFirst) {
    Publish({{"Board", 0, "driver", "identifier", false}});
    char driver[16];
    char id[16];
    const auto ask = [&](const char* name, unsigned driverSize, unsigned idSize) {
        std::strcpy(driver, "-");
        std::strcpy(id, "-");
        return oamShadowBoardGetDriverIDs(0, name, driver, driverSize, id, idSize);
    };
    EXPECT_EQ(ask("board", 7, 11), OAM_SUCCESS);
    EXPECT_STREQ(driver, "driver");
    EXPECT_STREQ(id, "identifier");
    EXPECT_EQ(ask("board", 6, 11), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(driver, "-");
    EXPECT_STREQ(id, "-");
    EXPECT_EQ(ask("board", 7, 10), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(driver, "driver");
    EXPECT_STREQ(id, "-");
    EXPECT_EQ(ask("other", 7, 11), OAMERR_NOT_FOUND);
    EXPECT_STREQ(driver, "-");
}

TEST_F(ShadowReaders, TellWhetherTheVxPluginIsUsed) {
    for (bool isUsing : {true, false}) {
        Publish({{"Board", 0, "", "", false}}, isUsing);
        bool flag = !isUsing;
        EXPECT_EQ(oamShadowBoardGetIsUsingVxPlugin(0, &flag), OAM_SUCCESS);
        EXPECT_EQ(flag, isUsing);
        EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
    }
}

TEST_F(ShadowReaders, IgnoreTheirFirstArgument) {
    Publish({{"Board", 3, "d", "i", true}});
    for (unsigned ignored : {0u, 1u, 0xFFFFFFFFu}) {
        char text[16];
        char other[16];
        unsigned number = 0;
        bool flag = false;
        EXPECT_EQ(oamShadowBoardEnum(ignored, 0, text, sizeof text), OAM_SUCCESS);
        EXPECT_EQ(oamShadowBoardLookupByNumber(ignored, 3, text, sizeof text), OAM_SUCCESS);
        EXPECT_EQ(oamShadowBoardLookupByDriverIDs(ignored, "d", "i", text, sizeof text),
                  OAM_SUCCESS);
        EXPECT_EQ(oamShadowBoardGetNumber(ignored, "Board", &number), OAM_SUCCESS);
        EXPECT_EQ(
            oamShadowBoardGetDriverIDs(ignored, "Board", text, sizeof text, other, sizeof other),
            OAM_SUCCESS);
        EXPECT_EQ(oamShadowBoardGetIsUsingVxPlugin(ignored, &flag), OAM_SUCCESS);
        EXPECT_EQ(oamShadowBoardIsUsingALaw(ignored, "Board", &flag), OAM_SUCCESS);
        EXPECT_TRUE(flag);
    }
}

TEST_F(ShadowReaders, SeeTheContentOfTheirMoment) {
    Publish({{"Board", 3, "", "", false}});
    EXPECT_EQ(NumberOf("Board"), Is("3"));
    segment.Overwrite(SegmentBytes({{"Other", 4, "", "", true}, {"Third", 5, "", "", false}}));
    EXPECT_EQ(NumberOf("Board"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(NumberOf("Other"), Is("4"));
    EXPECT_EQ(At(1), Is("Third"));
    EXPECT_EQ(ALawOf("Other"), Is("A-law"));
}

TEST_F(ShadowReaders, IgnoreTheBytesBetweenTheFields) {
    std::string bytes = SegmentBytes({{"Board", 3, "d", "i", false}});
    const std::string record = RecordBytes({"Board", 3, "d", "i", false}, '\xEE');
    bytes.replace(sizeof(int32_t), record.size(), record);
    bytes.replace(sizeof(int32_t) + kRecordSize + 1, std::string::npos,
                  std::string(kSegmentSize - sizeof(int32_t) - kRecordSize - 1, '\xDD'));
    segment.Make(bytes);
    ASSERT_EQ(oamShadowInit(), OAM_SUCCESS);
    EXPECT_EQ(NumberOf("Board"), Is("3"));
    EXPECT_EQ(ByDriverIDs("d", "i"), Is("Board"));
    EXPECT_EQ(ALawOf("Board"), Is("not"));
    bool flag = true;
    EXPECT_EQ(oamShadowBoardGetIsUsingVxPlugin(0, &flag), OAM_SUCCESS);
    EXPECT_FALSE(flag);
}

TEST_F(ShadowReaders, LeaveTheContentAsItIs) {
    const std::vector<ShadowRecord> records = {{"alpha", 1, "d", "i", true},
                                               {"bravo", 2, "e", "j", false}};
    Publish(records, true);
    EXPECT_EQ(At(1), Is("bravo"));
    EXPECT_EQ(ByNumber(2), Is("bravo"));
    EXPECT_EQ(ByDriverIDs("e", "j"), Is("bravo"));
    EXPECT_EQ(NumberOf("alpha"), Is("1"));
    EXPECT_EQ(ALawOf("alpha"), Is("A-law"));
    EXPECT_EQ(segment.Bytes(), SegmentBytes(records, true));
}

}  // namespace

}  // namespace oam::test
