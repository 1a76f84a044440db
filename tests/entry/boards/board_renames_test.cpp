// Giving a board another name: the table's order, the alerts, and names that are taken.
#include "board_change.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using BoardRenames = BoardChangeTest;

TEST_F(BoardRenames, AreToldAsRenamedThenModified) {
    EXPECT_EQ(Change("Delta", "Name", "Zulu"), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_RENAMED, 0, "Zulu", "Delta"},
                                            Said{OAMEVN_MODIFIED, 0, "Zulu", ""}));
    EXPECT_EQ(NumberOf("Zulu"), Are(1));
    EXPECT_EQ(NumberOf("Delta"), NoNumbers(OAMERR_NOT_FOUND));
    EXPECT_EQ(home.ReadDataFile("Obj1.xmo").find("<Delta>"), std::string::npos);
}

TEST_F(BoardRenames, KeepTheTableSorted) {
    const struct {
        const char* from;
        const char* to;
        std::vector<std::string> sorted;
    } renames[] = {
        {"Delta", "Echo", {"Bravo", "Echo", "Foxtrot"}},
        {"Echo", "Charlie", {"Bravo", "Charlie", "Foxtrot"}},
        {"Charlie", "alpha", {"alpha", "Bravo", "Foxtrot"}},
        {"alpha", "golf", {"Bravo", "Foxtrot", "golf"}},
        {"golf", "Cargo", {"Bravo", "Cargo", "Foxtrot"}},
        {"Bravo", "Zulu", {"Cargo", "Foxtrot", "Zulu"}},
        {"Zulu", "Delta", {"Cargo", "Delta", "Foxtrot"}},
        {"Cargo", "Elder", {"Delta", "Elder", "Foxtrot"}},
        {"Foxtrot", "Dog", {"Delta", "Dog", "Elder"}},
    };
    for (const auto& rename : renames) {
        ASSERT_EQ(Change(rename.from, "Name", rename.to), OAM_SUCCESS) << rename.from;
        EXPECT_EQ(BoardNames(), rename.sorted);
        for (const std::string& board : rename.sorted) {
            EXPECT_EQ(NumberOf(board).code, OAM_SUCCESS) << board << " after " << rename.to;
        }
        EXPECT_EQ(NumberOf(rename.from), NoNumbers(OAMERR_NOT_FOUND));
    }
}

TEST_F(BoardRenames, OfACaseOnlyAreOfTheSameBoard) {
    EXPECT_EQ(Change("Delta", "Name", "DELTA"), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("Bravo", "DELTA", "Foxtrot"));
    EXPECT_EQ(NumberOf("delta"), Are(1));
    EXPECT_THAT(alerts.Heard(OAMEVN_RENAMED),
                ElementsAre(Said{OAMEVN_RENAMED, 0, "DELTA", "Delta"}));
}

TEST_F(BoardRenames, ToTheSameNameAreNone) {
    EXPECT_EQ(Change("Delta", "Name", "Delta"), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_MODIFIED, 0, "Delta", ""}));
}

TEST_F(BoardRenames, ToAnotherBoardsNameAreRefusedInAnyCase) {
    for (const char* taken : {"Bravo", "bRAVO"}) {
        EXPECT_EQ(Change("Delta", "Name", taken), OAMERR_ALREADY_EXISTS);
        EXPECT_THAT(BoardNames(), ElementsAre("Bravo", "Delta", "Foxtrot"));
    }
    ExpectTableFree();
}

TEST_F(BoardRenames, ToANameTakenMeanwhileAreRefusedAtTheClosing) {
    const unsigned long handle = Open("Delta", kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "Name", "Wanted"), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(handle, "Number", "9"), OAM_SUCCESS);
    EXPECT_EQ(Change("Bravo", "Name", "wanted"), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(_oamCloseObject(handle), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(BoardNames(), ElementsAre("Delta", "Foxtrot", "wanted"));
    EXPECT_EQ(NumberOf("Delta"), Are(1));
    EXPECT_EQ(StoredKeywordOf("Delta", "Number"), Is("1"));
    EXPECT_THAT(alerts.Heard(), IsEmpty());
    ExpectTableFree();
}

TEST_F(BoardRenames, NeedAName) {
    const unsigned long handle = DbOpen("Delta", kProvider);
    EXPECT_EQ(_oamDbRemoveKeyword(handle, "Name"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Number", "9"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAMERR_NOT_FOUND);
    EXPECT_EQ(NumberOf("Delta"), Are(1));
    ExpectTableFree();
}

TEST_F(BoardRenames, ByManyThreadsAreOneAfterAnother) {
    std::vector<Elsewhere<int>> threads;
    for (const char* board : {"Bravo", "Delta", "Foxtrot"}) {
        threads.emplace_back([name = std::string(board)] {
            for (int i = 0; i < 30; ++i) {
                const std::string next = name + " " + std::to_string(i % 7);
                const std::string last = i == 0 ? name : name + " " + std::to_string((i - 1) % 7);
                EXPECT_EQ(Change(last, "Name", next), OAM_SUCCESS);
                EXPECT_EQ(NumberOf(next).code, OAM_SUCCESS);
            }
            return 0;
        });
    }
    for (auto& thread : threads) ASSERT_TRUE(thread.IsDone());
    EXPECT_THAT(BoardNames(), ElementsAre("Bravo 1", "Delta 1", "Foxtrot 1"));
}

}  // namespace

}  // namespace oam::test
