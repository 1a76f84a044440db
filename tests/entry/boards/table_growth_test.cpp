// Boards that join and leave the table while the service runs, and the numbers that they get.
#include <algorithm>

#include "boards.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TableGrowth : public BoardTest {
  protected:
    Numbers NumberOfNewBoard() { return NumberOf(CreateBoard(kProduct)); }
};

TEST_F(TableGrowth, IsEmptyWithoutConfiguredBoards) {
    Start();
    EXPECT_THAT(BoardNames(), IsEmpty());
    EXPECT_EQ(NumberOf("Card 0"), NoNumbers(OAMERR_NOT_FOUND));
    EXPECT_EQ(NumberOfNewBoard(), Are(0));
}

TEST_F(TableGrowth, GivesTheLowestFreeNumber) {
    Configure("A", {{"Number", "0"}});
    Configure("B", {{"Number", "2"}});
    Configure("C", {{"Number", "3"}});
    Start();
    EXPECT_EQ(NumberOfNewBoard(), Are(1));
    EXPECT_EQ(NumberOfNewBoard(), Are(4));
}

TEST_F(TableGrowth, GivesNumbersBelowAHighOne) {
    Configure("A", {{"Number", "4294967295"}});
    Configure("B", {{"Number", "1000"}});
    Start();
    EXPECT_EQ(NumberOfNewBoard(), Are(0));
    EXPECT_EQ(NumberOfNewBoard(), Are(1));
}

TEST_F(TableGrowth, GivesTheNumberOfADeletedBoardAgain) {
    Start();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(CreateBoard(kProduct), "Card " + std::to_string(i));
    EXPECT_EQ(_oamDeleteBoard("Card 1"), OAM_SUCCESS);
    EXPECT_EQ(NumberOfNewBoard(), Are(1));
}

TEST_F(TableGrowth, FreesTheNumberOfARenumberedBoard) {
    Start();
    EXPECT_EQ(CreateBoard(kProduct), "Card 0");
    EXPECT_EQ(Change("Card 0", "Number", "9"), OAM_SUCCESS);
    EXPECT_EQ(NumberOfNewBoard(), Are(0));
}

TEST_F(TableGrowth, TellsNumberAndNameApart) {
    Configure("Card 0", {{"Number", "1"}});
    Start();
    EXPECT_EQ(CreateBoard(kProduct), "Card 1");
    EXPECT_EQ(NumberOf("Card 1"), Are(0));
}

TEST_F(TableGrowth, StaysSortedWhileItGrowsAndShrinks) {
    Start();
    std::vector<std::string> expected;
    for (int i = 0; i < 40; ++i) expected.push_back(CreateBoard(kProduct));
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(BoardNames(), expected);
    while (!expected.empty()) {
        const size_t gone = expected.size() * 2 / 3;
        EXPECT_EQ(_oamDeleteBoard(expected[gone].c_str()), OAM_SUCCESS);
        expected.erase(expected.begin() + static_cast<long>(gone));
        ASSERT_EQ(BoardNames(), expected);
    }
    EXPECT_EQ(NumberOfNewBoard(), Are(0));
}

TEST_F(TableGrowth, FindsEveryBoardOfMany) {
    Start();
    for (int i = 0; i < 40; ++i) CreateBoard(kProduct);
    for (unsigned number = 0; number < 40; ++number) {
        const std::string name = "Card " + std::to_string(number);
        EXPECT_EQ(ByNumber(number), Is(name));
        EXPECT_EQ(NumberOf(name), Are(number));
    }
}

TEST_F(TableGrowth, IsListedByTheSupervisor) {
    Configure("zulu");
    Configure("Alpha");
    Start();
    CreateBoard(kProduct);
    EXPECT_EQ(KeywordOf("Supervisor", "Boards.Count"), Is("3"));
    EXPECT_EQ(KeywordOf("Supervisor", "Boards[0]"), Is("Alpha"));
    EXPECT_EQ(KeywordOf("Supervisor", "Boards[1]"), Is("Card 0"));
    EXPECT_EQ(KeywordOf("Supervisor", "Boards[2]"), Is("zulu"));
    EXPECT_EQ(_oamDeleteBoard("Alpha"), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "Boards.Count"), Is("2"));
    EXPECT_EQ(KeywordOf("Supervisor", "Boards[0]"), Is("Card 0"));
}

TEST_F(TableGrowth, EndsWithTheServiceAndComesBackFromTheDatabase) {
    Start();
    CreateBoard(kProduct);
    CreateBoard(kProduct);
    EXPECT_EQ(_oamDeleteBoard("Card 0"), OAM_SUCCESS);
    EXPECT_EQ(Change("Card 1", "Location.PCI.Bus", "6"), OAM_SUCCESS);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("Card 1"));
    EXPECT_EQ(NumberOf("Card 1"), Are(1));
    EXPECT_EQ(BusSlotOf("Card 1"), Are(6, 0));
}

}  // namespace

}  // namespace oam::test
