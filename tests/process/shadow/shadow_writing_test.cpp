// What the service writes into the segment, and when.
#include <algorithm>

#include "oam/shadow.h"
#include "segment.h"
#include "support/service_test.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Values;

class ShadowWriting : public ServiceTest {
  protected:
    void SetUp() override { AddPluginFor("rec.bpi", {"Card"}); }

    void Configure(const std::string& board, const Entries& more = {}) {
        Entries entries = StandardEntries(board, "Card");
        entries.emplace_back("Number", std::to_string(configured_));
        entries.insert(entries.end(), more.begin(), more.end());
        home.WriteDataFile("Obj" + std::to_string(configured_++) + ".xmo",
                           DataFile(board, entries));
    }
    // The boards as the service itself lists them, in its order.
    static std::vector<std::string> Table() {
        std::vector<std::string> names;
        char name[129];
        for (int i = 0; _oamBoardEnum(i, name, sizeof name) == OAM_SUCCESS; ++i) {
            names.push_back(name);
        }
        return names;
    }

    const Segment segment{home.Path(kSegmentFile)};

  private:
    int configured_ = 0;
};

TEST_F(ShadowWriting, PublishesTheConfiguredBoardsAtTheStart) {
    Configure("bravo", {{"Driver.Name", "drv"}, {"Driver.BoardId", "id"}, {"XLaw", "A-LAW"}});
    Configure("Alpha");
    Start();
    EXPECT_EQ(segment.Count(), 2);
    EXPECT_EQ(segment.Record(0), (ShadowRecord{"Alpha", 1, "", "", false}));
    EXPECT_EQ(segment.Record(1), (ShadowRecord{"bravo", 0, "drv", "id", true}));
    EXPECT_EQ(segment.VxPlugin(), 0u);
    EXPECT_EQ(segment.Bytes().size(), kSegmentSize);
}

TEST_F(ShadowWriting, PublishesAnEmptyTable) {
    segment.Make(SegmentBytes({{"Old", 1, "", "", false}}, true));
    Start();
    EXPECT_EQ(segment.Count(), 0);
    EXPECT_EQ(segment.VxPlugin(), 0u);
}

TEST_F(ShadowWriting, FollowsCreationsAndDeletions) {
    Configure("Middle");
    Start();
    EXPECT_EQ(CreateBoard("Card"), "Card 0");
    EXPECT_THAT(segment.Names(), ElementsAre("Card 0", "Middle"));
    EXPECT_EQ(segment.Record(0).number, 1u);
    EXPECT_EQ(_oamDeleteBoard("Middle"), OAM_SUCCESS);
    EXPECT_THAT(segment.Names(), ElementsAre("Card 0"));
    EXPECT_EQ(_oamDeleteBoard(nullptr), OAM_SUCCESS);
    EXPECT_THAT(segment.Names(), IsEmpty());
}

TEST_F(ShadowWriting, FollowsCommittedChanges) {
    Configure("Alpha", {{"Driver.Name", ""}, {"Driver.BoardId", ""}, {"XLaw", ""}});
    Configure("bravo");
    Start();
    const unsigned long handle = Open("Alpha", kWrite);
    for (const auto& [keyword, value] : Entries{{"Name", "Zulu"},
                                                {"Number", "17"},
                                                {"Driver.Name", "drv"},
                                                {"Driver.BoardId", "id"},
                                                {"XLaw", "ALAW"}}) {
        EXPECT_EQ(_oamSetKeyword(handle, keyword.c_str(), value.c_str()), OAM_SUCCESS);
    }
    EXPECT_THAT(segment.Names(), ElementsAre("Alpha", "bravo"));
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_THAT(segment.Names(), ElementsAre("bravo", "Zulu"));
    EXPECT_EQ(segment.Record(1), (ShadowRecord{"Zulu", 17, "drv", "id", true}));
}

TEST_F(ShadowWriting, LeavesRefusedChangesOut) {
    Configure("Alpha");
    Configure("bravo");
    Start();
    const unsigned long handle = Open("Alpha", kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "Number", "9"), OAM_SUCCESS);
    EXPECT_EQ(Change("bravo", "Number", "9"), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(handle), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(segment.Record(0).number, 0u);
    EXPECT_EQ(segment.Record(1).number, 9u);
}

TEST_F(ShadowWriting, FollowsARestart) {
    Configure("Alpha");
    Configure("bravo");
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    home.Remove("oam/cfg/Obj0.xmo");
    Start();
    EXPECT_THAT(segment.Names(), ElementsAre("bravo"));
}

TEST_F(ShadowWriting, CutsTheDriverBoardIdTo64Characters) {
    const std::string id = std::string(60, 'i') + "0123456789";
    Configure("Board", {{"Driver.Name", std::string(127, 'd')}, {"Driver.BoardId", id}});
    Start();
    EXPECT_EQ(segment.Record(0), (ShadowRecord{"Board", 0, std::string(127, 'd'),
                                               std::string(60, 'i') + "0123", false}));
    char name[129];
    EXPECT_EQ(oamShadowBoardLookupByDriverIDs(0, std::string(127, 'd').c_str(), id.c_str(), name,
                                              sizeof name),
              OAMERR_NOT_FOUND);
    EXPECT_EQ(oamShadowBoardLookupByDriverIDs(0, std::string(127, 'd').c_str(),
                                              id.substr(0, 64).c_str(), name, sizeof name),
              OAM_SUCCESS);
    EXPECT_EQ(
        _oamBoardLookupByDriverIDs(std::string(127, 'd').c_str(), id.c_str(), name, sizeof name),
        OAM_SUCCESS);
}

TEST_F(ShadowWriting, PublishesANameOf127Characters) {
    const std::string name(127, 'n');
    Configure(name);
    Start();
    EXPECT_EQ(segment.Record(0).name, name);
    unsigned number = 77;
    EXPECT_EQ(oamShadowBoardGetNumber(0, name.c_str(), &number), OAM_SUCCESS);
    EXPECT_EQ(number, 0u);
}

using Law = std::pair<std::string, bool>;

class ShadowOfLaw : public ShadowWriting, public testing::WithParamInterface<Law> {};

TEST_P(ShadowOfLaw, IsSetByTwoSpellingsOnly) {
    Configure("Board", {{"XLaw", GetParam().first}});
    Configure("Changed", {{"XLaw", GetParam().second ? "MU-LAW" : "A-LAW"}});
    Start();
    EXPECT_EQ(segment.Record(0).isALaw, GetParam().second);
    EXPECT_EQ(Change("Changed", "XLaw", GetParam().first), OAM_SUCCESS);
    EXPECT_EQ(segment.Record(1).isALaw, GetParam().second);
    bool aLaw = !GetParam().second;
    EXPECT_EQ(oamShadowBoardIsUsingALaw(0, "Board", &aLaw), OAM_SUCCESS);
    EXPECT_EQ(aLaw, GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Values, ShadowOfLaw,
                         Values(Law{"A-LAW", true}, Law{"ALAW", true}, Law{"a-law", false},
                                Law{"alaw", false}, Law{"A-Law", false}, Law{"MU-LAW", false},
                                Law{"A-LAW!", false}, Law{"", false}));

TEST_F(ShadowWriting, IsNotALawWithoutTheKeyword) {
    Configure("Board");
    Start();
    EXPECT_FALSE(segment.Record(0).isALaw);
}

class ShadowOfPlugins : public ShadowWriting, public testing::WithParamInterface<const char*> {};

TEST_P(ShadowOfPlugins, TellsTheVxPluginInAnyCase) {
    AddPlugin(GetParam());
    Configure("Board");
    Start();
    EXPECT_EQ(segment.VxPlugin(), 1u);
    EXPECT_EQ(CreateBoard("Card"), "Card 0");
    EXPECT_EQ(segment.VxPlugin(), 1u);
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    home.Remove(std::string("lib/") + GetParam());
    Start();
    EXPECT_EQ(segment.VxPlugin(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Names, ShadowOfPlugins, Values("vxplugin.bpi", "VxPlugin.BPI"));

TEST_F(ShadowWriting, DoesNotTakeAnotherPluginForTheVxPlugin) {
    AddPlugin("vxplugin2.bpi");
    AddPlugin("avxplugin.bpi");
    Start();
    EXPECT_EQ(segment.VxPlugin(), 0u);
}

TEST_F(ShadowWriting, HoldsThe31BoardsThatFit) {
    Start();
    for (size_t i = 0; i < kMostRecords; ++i) CreateBoard("Card");
    EXPECT_EQ(segment.Names(), Table());
    EXPECT_EQ(segment.Count(), static_cast<int>(kMostRecords));
    EXPECT_EQ(segment.VxPlugin(), 0u);
}

TEST_F(ShadowWriting, LeavesOutThe32ndBoardInTableOrder) {
    AddPlugin("vxplugin.bpi");
    Start();
    for (size_t i = 0; i < kMostRecords + 3; ++i) CreateBoard("Card");
    std::vector<std::string> table = Table();
    ASSERT_EQ(table.size(), kMostRecords + 3);
    const std::string last = table.back();
    table.resize(kMostRecords);
    EXPECT_EQ(segment.Names(), table);
    EXPECT_EQ(segment.VxPlugin(), 1u);
    for (size_t i = 0; i < kMostRecords; ++i) {
        unsigned number = 0;
        ASSERT_EQ(_oamBoardGetNumber(table[i].c_str(), &number), OAM_SUCCESS);
        EXPECT_EQ(segment.Record(i), (ShadowRecord{table[i], number, "", "", false}));
    }
    unsigned number = 0;
    EXPECT_EQ(oamShadowBoardGetNumber(0, last.c_str(), &number), OAMERR_NOT_FOUND);
    EXPECT_EQ(oamShadowBoardGetNumber(0, table[30].c_str(), &number), OAM_SUCCESS);
}

TEST_F(ShadowWriting, MovesBoardsUpIntoThe31) {
    Start();
    for (size_t i = 0; i < kMostRecords + 1; ++i) CreateBoard("Card");
    std::vector<std::string> table = Table();
    EXPECT_EQ(_oamDeleteBoard(table[4].c_str()), OAM_SUCCESS);
    table.erase(table.begin() + 4);
    EXPECT_EQ(segment.Names(), table);
    EXPECT_EQ(Change(table[7], "Name", "A first one"), OAM_SUCCESS);
    EXPECT_EQ(segment.Names(), Table());
    EXPECT_EQ(segment.Record(0).name, "A first one");
}

TEST_F(ShadowWriting, Publishes31OfManyConfiguredBoards) {
    for (int i = 10; i < 50; ++i) Configure("B" + std::to_string(i));
    Start();
    std::vector<std::string> table = Table();
    EXPECT_EQ(table.size(), 40u);
    table.resize(kMostRecords);
    EXPECT_EQ(segment.Names(), table);
}

TEST_F(ShadowWriting, ReplacesGarbageAtTheNextChange) {
    Configure("Board");
    segment.Make(std::string(kSegmentSize, '\xFF'));
    Start();
    EXPECT_THAT(segment.Names(), ElementsAre("Board"));
    segment.Overwrite(std::string(kSegmentSize, '\x7F'));
    EXPECT_EQ(CreateBoard("Card"), "Card 0");
    EXPECT_THAT(segment.Names(), ElementsAre("Board", "Card 0"));
    EXPECT_EQ(segment.VxPlugin(), 0u);
}

TEST_F(ShadowWriting, GoesOnWithoutASegmentThatWasCutShort) {
    Configure("Board");
    Start();
    segment.Truncate(100);
    EXPECT_EQ(CreateBoard("Card"), "Card 0");
    EXPECT_EQ(Change("Board", "Name", "Renamed"), OAM_SUCCESS);
    EXPECT_EQ(_oamDeleteBoard("Card 0"), OAM_SUCCESS);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(segment.Names(), ElementsAre("Renamed"));
}

}  // namespace

}  // namespace oam::test
