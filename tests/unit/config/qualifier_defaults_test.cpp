#include <gtest/gtest.h>

#include "objects/object.h"

namespace oam::test {
namespace {

TEST(QualifierDefaults, AreEightAndIgnoreCase) {
    const struct {
        const char* qualifier;
        const char* value;
    } rows[] = {{"Base", "10"},       {"choices.count", "0"}, {"DESCRIPTION", ""},
                {"Keywords.Count", "0"}, {"Max", "32767"},       {"min", "0"},
                {"ReadOnly", "No"},   {"Type", "String"}};
    for (const auto& row : rows) {
        char buffer[16] = "untouched";
        EXPECT_EQ(getQualifierDefault(row.qualifier, buffer, sizeof buffer), OAM_SUCCESS);
        EXPECT_STREQ(buffer, row.value) << row.qualifier;
    }
}

TEST(QualifierDefaults, AnswerByTheRuleOfTexts) {
    char buffer[8] = "before";
    EXPECT_EQ(getQualifierDefault("Max", buffer, 5), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "before");
    EXPECT_EQ(getQualifierDefault("Max", buffer, 6), OAM_SUCCESS);
    EXPECT_EQ(getQualifierDefault("Max", nullptr, 0), OAM_SUCCESS);
}

TEST(QualifierDefaults, KnowNoOther) {
    char buffer[8] = "before";
    for (const char* qualifier : {"", "Bas", "Bases", "Choices[0]", "Keywords"}) {
        EXPECT_EQ(getQualifierDefault(qualifier, buffer, sizeof buffer), OAMERR_NOT_FOUND);
        EXPECT_EQ(getQualifierDefault(qualifier, nullptr, 0), OAMERR_NOT_FOUND);
    }
    EXPECT_STREQ(buffer, "before");
}

}  // namespace
}  // namespace oam::test
