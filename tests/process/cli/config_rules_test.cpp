#include "config_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/data_file.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// What is found in the objects of an export, as texts.
std::vector<std::string> findings(const std::vector<ObjectEntries>& objects,
                                  const std::string& served = "P") {
    std::vector<FoundObject> found;
    for (const DataObject& object : ReadDataFile(ExportFile(objects), kExportRoot).objects)
        found.push_back({"f", object});
    std::vector<std::string> texts;
    for (const Finding& finding :
         CheckObjects(found, [&](const std::string& product) { return product == served; }))
        texts.push_back(FindingText(finding));
    return texts;
}

ObjectEntries board(const std::string& name, const std::string& number,
                    const std::string& product = "P") {
    return {name, {{"Name", name}, {"Number", number}, {"Product", product}}};
}

std::vector<std::string> shared(const std::vector<std::string>& names) {
    std::vector<FoundName> found;
    for (const std::string& name : names) found.push_back({"lib/" + name, {}, name});
    std::vector<std::string> texts;
    for (const Finding& finding : CheckSharedDataFiles(found))
        texts.push_back(FindingText(finding));
    return texts;
}

}  // namespace

TEST(ConfigRules, FindNothingInASoundConfiguration) {
    EXPECT_THAT(findings({board("A", "0"),
                          board("B", "1"),
                          {"Supervisor", {{"Name", "Supervisor"}}},
                          {"x.bpi", {{"Name", "x.bpi"}}}}),
                IsEmpty());
}

TEST(ConfigRules, FindTwoObjectsOfOneNameInAnyCase) {
    EXPECT_THAT(findings({board("Board 1", "0"), board("BOARD 1", "1")}),
                ElementsAre("f:8:4: a second object named \"BOARD 1\"; the first is in f:3"));
}

TEST(ConfigRules, FindTwoBoardsOfOneNumberAsTheServiceReadsNumbers) {
    EXPECT_THAT(findings({board("A", "7"), board("B", "007")}),
                ElementsAre("f:10:7: board number 7 belongs to \"A\" in f:3 already: the service "
                            "would not start"));
    EXPECT_EQ(findings({board("A", "0"), {"B", {{"Name", "B"}, {"Product", "P"}}}}).size(), 1u);
}

TEST(ConfigRules, LetBoardsThatNobodyServesShareANumber) {
    EXPECT_THAT(findings({board("A", "7"), board("B", "7", "Q")}), IsEmpty());
    EXPECT_THAT(findings({board("A", "7", "Q"), board("B", "7", "Q")}), IsEmpty());
}

TEST(ConfigRules, FindAnObjectWithoutItsName) {
    EXPECT_THAT(findings({{"A", {{"Number", "1"}}}}),
                ElementsAre("f:3:4: \"A\" has no keyword \"Name\": it cannot be changed"));
    EXPECT_THAT(findings({{"A", {{"Name", "B"}}}}),
                ElementsAre("f:4:7: the keyword \"Name\" is \"B\" instead of \"A\""));
}

TEST(ConfigRules, FindNamesThatAreTooLong) {
    EXPECT_THAT(findings({board(std::string(127, 'n'), "1")}), IsEmpty());
    EXPECT_EQ(findings({board(std::string(128, 'n'), "1")}).size(), 1u);
}

TEST(ConfigRules, FindAKeywordThatStandsTwice) {
    EXPECT_THAT(findings({{"A", {{"Name", "A"}, {"Number", "1"}, {"NUMBER", "2"}}}}),
                ElementsAre("f:6:7: the keyword \"NUMBER\" stands here again"));
}

TEST(ConfigRules, FindControlCharactersInValues) {
    EXPECT_EQ(findings({{"A", {{"Name", "A"}, {"Driver.Name", "two\nlines"}}}}).size(), 1u);
}

TEST(ConfigRules, FindASupervisorThatIsSpelledInAnotherWay) {
    EXPECT_THAT(findings({{"supervisor", {{"Name", "supervisor"}}}}),
                ElementsAre("f:3:4: the Supervisor must be spelled \"Supervisor\""));
}

TEST(SharedDataFiles, AreFoundWhereNamesEqualUpToTheirFirstDot) {
    EXPECT_THAT(shared({"x.bpi", "y.bpi", "z.emc", "Supervisor", "Board 1"}), IsEmpty());
    EXPECT_THAT(
        shared({"x.bpi", "x.emc"}),
        ElementsAre("lib/x.emc: \"x.emc\" would share the data file \"x.xmo\" with \"x.bpi\""));
    EXPECT_THAT(
        shared({"x.bpi", "x.y.bpi"}),
        ElementsAre("lib/x.y.bpi: \"x.y.bpi\" would share the data file \"x.xmo\" with \"x.bpi\""));
}

TEST(SharedDataFiles, AreFoundWithTheSupervisorAndWithBoards) {
    EXPECT_THAT(shared({"Super.bpi"}),
                ElementsAre("lib/Super.bpi: \"Super.bpi\" would share the data file \"Super.xmo\" "
                            "with the Supervisor"));
    EXPECT_THAT(
        shared({"Obj0.bpi", "Obj12.emc"}),
        ElementsAre("lib/Obj0.bpi: \"Obj0.bpi\" would share the data file \"Obj0.xmo\" with "
                    "a board",
                    "lib/Obj12.emc: \"Obj12.emc\" would share the data file \"Obj12.xmo\" "
                    "with a board"));
    EXPECT_THAT(shared({"Obj.bpi", "Object0.bpi", "obj0.bpi"}), IsEmpty());
}

TEST(SharedDataFiles, AreNotFoundBetweenAnObjectAndItsOwnLibrary) {
    EXPECT_THAT(shared({"x.bpi", "X.BPI", "x.bpi"}), IsEmpty());
}

}  // namespace oam::test
