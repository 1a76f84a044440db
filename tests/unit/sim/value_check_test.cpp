#include "value_check.h"

#include <gtest/gtest.h>

#include "fake_service.h"

namespace oam::sim {
namespace {

class ValueCheckTest : public ::testing::Test {
  protected:
    ValueCheckTest() { service_.AddObject("Board", "E1"); }

    void Describe(const std::string& keyword, const FakeService::Entries& qualifiers) {
        for (const auto& [name, value] : qualifiers) {
            service_.Store("Board", keyword + "?" + name, value);
        }
    }

    oam_result Check(const std::string& keyword, std::string_view value) {
        stored_ = "(untouched)";
        const auto handle = service_.Open("Board", OAM_OPEN_READ);
        const auto result = checkChange(handle, keyword, value, &stored_);
        service_.Drop(handle);
        EXPECT_TRUE(!result || stored_ == "(untouched)");
        return result;
    }

    FakeService service_;
    std::string stored_;
};

TEST_F(ValueCheckTest, TakesAnyTextWithoutQualifiers) {
    EXPECT_EQ(Check("Anything", "a text, 100%"), OAM_SUCCESS);
    EXPECT_EQ(stored_, "a text, 100%");
    EXPECT_EQ(Check("Anything", ""), OAM_SUCCESS);
    EXPECT_EQ(stored_, "");
}

TEST_F(ValueCheckTest, RefusesWhatTheDataFileCannotKeep) {
    for (const auto* value : {"a<b", " a", "a ", "a\nb"}) {
        EXPECT_EQ(Check("Anything", value), OAMERR_SET_BOARD_KEYWORD_FAIL) << value;
    }
    EXPECT_EQ(Check("Anything", std::string(2047, 'x')), OAM_SUCCESS);
    EXPECT_EQ(Check("Anything", std::string(2048, 'x')), OAMERR_SET_BOARD_KEYWORD_FAIL);
    for (const auto* keyword : {"", "a<b", "a>b", "a\\b", " a", "a\n", "/a"}) {
        EXPECT_EQ(Check(keyword, "x"), OAMERR_SET_BOARD_KEYWORD_FAIL) << keyword;
    }
}

TEST_F(ValueCheckTest, KeepsQualifiersOutOfReach) {
    Describe("Serial", {{"ReadOnly", "Yes"}});
    EXPECT_EQ(Check("Serial?ReadOnly", "No"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Check("Serial", "S1"), OAMERR_ACCESS_DENIED);
}

TEST_F(ValueCheckTest, BoundsNumbersByMinAndMax) {
    Describe("Level", {{"Type", "integer"}, {"Min", "-10"}, {"Max", "31"}});
    for (const auto* value : {"-10", "0", "31", "007"}) {
        EXPECT_EQ(Check("Level", value), OAM_SUCCESS) << value;
    }
    for (const auto* value :
         {"", "-11", "32", "1.5", "0x1", "one", "1 2", "99999999999999999999"}) {
        EXPECT_EQ(Check("Level", value), OAMERR_SET_BOARD_KEYWORD_FAIL) << value;
    }
}

TEST_F(ValueCheckTest, BoundsNumbersByTheServicesDefaults) {
    Describe("Level", {{"Type", "Integer"}, {"Max", "much"}});
    EXPECT_EQ(Check("Level", "32767"), OAM_SUCCESS);
    EXPECT_EQ(Check("Level", "32768"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(Check("Level", "-1"), OAMERR_SET_BOARD_KEYWORD_FAIL);
}

TEST_F(ValueCheckTest, ReadsNumbersInTheirBase) {
    Describe("Code", {{"Type", "Integer"}, {"Base", "16"}, {"Max", "FFFFFFFF"}});
    EXPECT_EQ(Check("Code", "5000abCD"), OAM_SUCCESS);
    EXPECT_EQ(Check("Code", "100000000"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    Describe("Code", {{"Base", "1"}, {"Max", "9"}});
    EXPECT_EQ(Check("Code", "9"), OAM_SUCCESS);
    EXPECT_EQ(Check("Code", "a"), OAMERR_SET_BOARD_KEYWORD_FAIL);
}

TEST_F(ValueCheckTest, StoresAChoiceAsItIsSpelled) {
    Describe("XLaw", {{"Choices.Count", "2"}, {"Choices[0]", "A-LAW"}, {"Choices[1]", "MU-LAW"}});
    EXPECT_EQ(Check("xlaw", "mu-Law"), OAM_SUCCESS);
    EXPECT_EQ(stored_, "MU-LAW");
    EXPECT_EQ(Check("XLaw", ""), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(Check("XLaw", "ALAW"), OAMERR_SET_BOARD_KEYWORD_FAIL);
}

TEST_F(ValueCheckTest, EndsAtAMissingChoiceHoweverManyAreCounted) {
    Describe("XLaw", {{"Choices.Count", "9223372036854775807"}, {"Choices[0]", "A-LAW"}});
    EXPECT_EQ(Check("XLaw", "a-law"), OAM_SUCCESS);
    EXPECT_EQ(Check("XLaw", "MU-LAW"), OAMERR_SET_BOARD_KEYWORD_FAIL);
}

TEST_F(ValueCheckTest, TakesOnlyNamesForObjects) {
    Describe("Name", {{"Type", "Object"}});
    EXPECT_EQ(Check("Name", "Board 7"), OAM_SUCCESS);
    for (const auto* value : {"", "a>b", "a\\b", "x.bpi"}) {
        EXPECT_EQ(Check("Name", value), OAMERR_SET_BOARD_KEYWORD_FAIL) << value;
    }
}

TEST_F(ValueCheckTest, TakesOnlyBareNamesForFiles) {
    Describe("File", {{"Type", "FileName"}});
    EXPECT_EQ(Check("File", "..chassis"), OAM_SUCCESS);
    for (const auto* value : {"", ".", "..", "/etc/passwd", "../x", "a/"}) {
        EXPECT_EQ(Check("File", value), OAMERR_SET_BOARD_KEYWORD_FAIL) << value;
    }
}

TEST_F(ValueCheckTest, KeepsDistinctElementsApart) {
    service_.Store("Board", "Products.Count", "3");
    service_.Store("Board", "Products[0]", "E1");
    service_.Store("Board", "Products[2]", "IP");
    Describe("Products[0]", {{"Distinct", "Yes"}});
    EXPECT_EQ(Check("Products[0]", "e1"), OAM_SUCCESS);
    EXPECT_EQ(Check("Products[0]", "T1"), OAM_SUCCESS);
    EXPECT_EQ(Check("Products[0]", "ip"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    Describe("Products", {{"Distinct", "Yes"}});
    EXPECT_EQ(Check("Products", "E1"), OAM_SUCCESS);
}

}  // namespace
}  // namespace oam::sim
