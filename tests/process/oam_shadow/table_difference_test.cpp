#include "table_difference.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "board_output.h"

namespace oam::shadow {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Board kOne = {"one", 1, "d", "1", false};
const Board kTwo = {"two", 2, "", "", false};

Board with(Board board, const std::string& name, unsigned number) {
    board.name = name;
    board.number = number;
    return board;
}

std::vector<std::string> lines(const std::vector<Board>& before, const std::vector<Board>& after) {
    std::vector<std::string> found;
    for (const auto& difference : differences({before}, {after})) {
        found.push_back(lineOf(difference));
    }
    return found;
}

TEST(TableDifference, OfOneStateIsNone) {
    EXPECT_THAT(lines({kOne, kTwo}, {kOne, kTwo}), IsEmpty());
    EXPECT_THAT(lines({}, {}), IsEmpty());
}

TEST(TableDifference, TellsAddedAndRemovedBoards) {
    EXPECT_THAT(lines({kOne}, {kTwo}), ElementsAre("removed 1: \"one\"", "added 2: \"two\""));
}

TEST(TableDifference, TellsARenamedBoardByItsNumber) {
    EXPECT_THAT(lines({kOne, kTwo}, {kTwo, with(kOne, "zero", 1)}),
                ElementsAre("renamed 1: \"one\" -> \"zero\""));
    EXPECT_THAT(lines({kOne}, {with(kOne, "ONE", 1)}),
                ElementsAre("renamed 1: \"one\" -> \"ONE\""));
}

TEST(TableDifference, TellsNamesThatWereExchanged) {
    EXPECT_THAT(
        lines({with(kOne, "a", 1), with(kOne, "b", 2)}, {with(kOne, "a", 2), with(kOne, "b", 1)}),
        ElementsAre("renamed 1: \"a\" -> \"b\"", "renamed 2: \"b\" -> \"a\""));
}

TEST(TableDifference, TellsChangedFields) {
    Board changed = kOne;
    changed.driverName = "";
    changed.isALaw = true;
    EXPECT_THAT(lines({kOne}, {changed}),
                ElementsAre("changed 1: \"one\" driverName \"d\" -> \"\", aLaw no -> yes"));
}

TEST(TableDifference, TellsABoardThatWasGivenAnotherNumber) {
    EXPECT_THAT(lines({kOne}, {with(kOne, "one", 7)}),
                ElementsAre("changed 7: \"one\" number 1 -> 7"));
}

TEST(TableDifference, TellsARenameAndAChangeApart) {
    Board changed = with(kOne, "new", 1);
    changed.driverBoardId = "9";
    EXPECT_THAT(lines({kOne}, {changed}),
                ElementsAre("renamed 1: \"one\" -> \"new\"",
                            "changed 1: \"new\" driverBoardId \"1\" -> \"9\""));
}

TEST(TableDifference, TakesEachBoardOnceWhenNumbersAreDouble) {
    EXPECT_THAT(lines({with(kOne, "a", 1), with(kOne, "b", 1)}, {with(kOne, "a", 1)}),
                ElementsAre("removed 1: \"b\""));
}

TEST(TableDifference, TellsTheVxPlugin) {
    Table with;
    with.isUsingVxPlugin = true;
    const auto found = differences({}, with);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(lineOf(found[0]), "vxplugin yes");
    EXPECT_EQ(jsonOf(found[0]), (Json{{"event", "vxplugin"}, {"usingVxPlugin", true}}));
}

TEST(TableDifference, IsShownWithoutControlCharacters) {
    EXPECT_THAT(lines({}, {with(kOne, "a\n\x1b[31m", 1)}),
                ElementsAre("added 1: \"a\\n\\x1b[31m\""));
}

TEST(TableDifference, ShowsBothStatesInJson) {
    const auto found = differences({{kOne}}, {{with(kOne, "new", 1)}});
    ASSERT_EQ(found.size(), 1u);
    const Json shown = jsonOf(found[0]);
    EXPECT_EQ(shown["event"], "renamed");
    EXPECT_EQ(shown["before"]["name"], "one");
    EXPECT_EQ(shown["after"]["name"], "new");
    EXPECT_EQ(shown["after"]["number"], 1);
}

}  // namespace
}  // namespace oam::shadow
