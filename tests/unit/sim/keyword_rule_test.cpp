#include "keyword_rule.h"

#include <gtest/gtest.h>

#include "fake_service.h"

namespace oam::sim {
namespace {

class KeywordRuleTest : public ::testing::Test {
  protected:
    KeywordRuleTest() { service_.AddObject("Board", "E1"); }

    // Installs and closes.
    oam_result Install(const KeywordRule& rule,
                       unsigned int mode = OAM_OPEN_WRITE | OAM_OPEN_PROVIDER) {
        const auto handle = service_.Open("Board", mode);
        const auto result = installKeyword(handle, rule);
        service_.Close(handle);
        return result;
    }
    std::optional<std::string> Stored(const std::string& entry) {
        return service_.Stored("Board", entry);
    }

    FakeService service_;
};

TEST_F(KeywordRuleTest, StoresTheValueAndEveryQualifierThatTheRowHas) {
    EXPECT_EQ(Install({.name = "XLaw",
                       .value = "MU-LAW",
                       .choices = {"A-LAW", "MU-LAW"},
                       .isDistinct = true,
                       .description = "law"}),
              OAM_SUCCESS);
    EXPECT_EQ(Stored("XLaw"), "MU-LAW");
    EXPECT_EQ(Stored("XLaw?Type"), "String");
    EXPECT_EQ(Stored("XLaw?ReadOnly"), "No");
    EXPECT_EQ(Stored("XLaw?Distinct"), "Yes");
    EXPECT_EQ(Stored("XLaw?Description"), "law");
    EXPECT_EQ(Stored("XLaw?Choices.Count"), "2");
    EXPECT_EQ(Stored("XLaw?Choices[0]"), "A-LAW");
    EXPECT_EQ(Stored("XLaw?Choices[1]"), "MU-LAW");
    EXPECT_FALSE(Stored("XLaw?Min"));
    EXPECT_FALSE(Stored("XLaw?Max"));
}

TEST_F(KeywordRuleTest, KeepsTheValueAndRenewsTheQualifiers) {
    service_.Store("Board", "Level", "7");
    service_.Store("Board", "Level?Max", "8");
    service_.Store("Board", "Level?Choices.Count", "1");
    EXPECT_EQ(Install(numberRule("Level", 3, -1, 31, "level")), OAM_SUCCESS);
    EXPECT_EQ(Stored("Level"), "7");
    EXPECT_EQ(Stored("Level?Type"), "Integer");
    EXPECT_EQ(Stored("Level?Min"), "-1");
    EXPECT_EQ(Stored("Level?Max"), "31");
    EXPECT_FALSE(Stored("Level?Choices.Count"));
}

TEST_F(KeywordRuleTest, StoresNoValueWhenTheServiceDoes) {
    EXPECT_EQ(Install(numberRule("Number", {}, 0, 9, "number")), OAM_SUCCESS);
    EXPECT_FALSE(Stored("Number"));
    EXPECT_EQ(Stored("Number?Max"), "9");
}

TEST_F(KeywordRuleTest, AnswersWhatTheDatabaseRefuses) {
    EXPECT_EQ(Install(numberRule("Level", 3, 0, 9, "level"), OAM_OPEN_WRITE), OAMERR_ACCESS_DENIED);
}

TEST_F(KeywordRuleTest, RemovesTheKeywordWithItsQualifiers) {
    const auto rule = numberRule("Level", 3, 0, 9, "level");
    EXPECT_EQ(Install(rule), OAM_SUCCESS);
    const auto handle = service_.Open("Board", OAM_OPEN_WRITE | OAM_OPEN_PROVIDER);
    EXPECT_EQ(removeKeyword(handle, rule), OAM_SUCCESS);
    EXPECT_EQ(removeKeyword(handle, rule), OAM_SUCCESS);
    service_.Close(handle);
    for (const auto* entry :
         {"Level", "Level?Type", "Level?Min", "Level?Max", "Level?ReadOnly", "Level?Description"}) {
        EXPECT_FALSE(Stored(entry)) << entry;
    }
}

}  // namespace
}  // namespace oam::sim
