#include "history/keyword_changes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "data_files.h"
#include "history/keyword_rollback.h"
#include "matchers.h"

namespace oam::server::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

const auto kNone = std::nullopt;

}  // namespace

TEST(KeywordsOf, TakeAFileAsTheServiceDoes) {
    // The first spelling, the last value; qualifiers are entries like others.
    EXPECT_THAT(KeywordsOf(DataFile("A", {{"number", "1"},
                                          {"Name", "A"},
                                          {"Name?Type", "Object"},
                                          {"NUMBER", "2"},
                                          {"Empty", ""}})),
                ElementsAre(Pair("Empty", ""), Pair("Name", "A"), Pair("Name?Type", "Object"),
                            Pair("number", "2")));
}

TEST(KeywordsOf, AreNoneOfBytesThatHoldNoObject) {
    EXPECT_THAT(KeywordsOf(""), IsEmpty());
    EXPECT_THAT(KeywordsOf("rubbish"), IsEmpty());
}

TEST(CompareKeywords, FindsValuesThatChangedCameAndWent) {
    EXPECT_THAT(
        CompareKeywords({{"A", "1"}, {"B", "2"}, {"D", "4"}}, {{"A", "1"}, {"B", "3"}, {"C", ""}}),
        ElementsAre(Changed("B", "2", "3"), Changed("C", kNone, ""), Changed("D", "4", kNone)));
}

TEST(CompareKeywords, GoesByNamesWithoutCaseAndValuesWithIt) {
    EXPECT_THAT(CompareKeywords({{"name", "a"}, {"B", "x"}}, {{"NAME", "a"}, {"b", "X"}}),
                ElementsAre(Changed("b", "x", "X")));
}

TEST(CompareKeywords, FindsNothingWhereNothingIs) {
    EXPECT_THAT(CompareKeywords({}, {}), IsEmpty());
    EXPECT_THAT(CompareKeywords({{"A", "1"}}, {}), ElementsAre(Changed("A", "1", kNone)));
    EXPECT_THAT(CompareKeywords({}, {{"A", "1"}}), ElementsAre(Changed("A", kNone, "1")));
}

TEST(RollBackKeywords, SetsWhatIsThereAtBothTimes) {
    const auto rollback = RollBackKeywords(
        {{"Added", "1"}, {"Name", "B"}, {"Name?Type", "x"}, {"Number", "2"}, {"Same", "s"}},
        {{"Name", "B"}, {"Name?Type", "y"}, {"Number", "1"}, {"Removed", "r"}, {"Same", "s"}});
    ASSERT_EQ(rollback.assignments.size(), 1u);
    EXPECT_EQ(rollback.assignments[0].keyword, "Number");
    EXPECT_EQ(rollback.assignments[0].value, "1");
    EXPECT_THAT(rollback.others,
                ElementsAre(Changed("Added", "1", kNone), Changed("Name?Type", "x", "y"),
                            Changed("Removed", kNone, "r")));
}

}  // namespace oam::server::test
