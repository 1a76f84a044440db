// The qualifiers that the Supervisor answers by itself.
#include "support/service_test.h"

namespace oam::test {
namespace {

class SupervisorQualifiers : public ServiceTest {
  protected:
    void SetUp() override {
        Start();
        handle = Open("Supervisor", kProvider);
    }
    void TearDown() override {
        EXPECT_EQ(_oamCloseObject_WOAN(handle), OAM_SUCCESS);
        ServiceTest::TearDown();
    }

    Answer Ask(const std::string& keyword, const std::string& qualifier) {
        return GetQualifier(handle, keyword, qualifier);
    }
    oam_result AskWithSize(const char* keyword, const char* qualifier, unsigned size) {
        char buffer[64] = "mine";
        const oam_result result = _oamGetQualifier(handle, keyword, qualifier, buffer, size);
        EXPECT_EQ(result != OAM_SUCCESS, std::string(buffer) == "mine");
        return result;
    }

    unsigned long handle = 0;
};

TEST_F(SupervisorQualifiers, NameAndVersionAreReadOnly) {
    for (const char* keyword :
         {"Name", "name", "Version", "Version.Major", "VERSION.MINOR", "VersionX"}) {
        EXPECT_EQ(Ask(keyword, "ReadOnly"), Is("Yes")) << keyword;
        EXPECT_EQ(Ask(keyword, "READONLY"), Is("Yes")) << keyword;
    }
}

TEST_F(SupervisorQualifiers, OtherKeywordsAreNotUnlessItIsStored) {
    EXPECT_EQ(Ask("AutoStartEnabled", "ReadOnly"), Is("No"));
    EXPECT_EQ(Ask("Versio", "ReadOnly"), Is("No"));
    EXPECT_EQ(_oamDbSetQualifier(handle, "AutoStartEnabled", "ReadOnly", "Maybe"), OAM_SUCCESS);
    EXPECT_EQ(Ask("AutoStartEnabled", "ReadOnly"), Is("Maybe"));
}

TEST_F(SupervisorQualifiers, SettingsOfferYesAndNo) {
    for (const char* keyword :
         {"AutoStartEnabled", "AUTOSTOPENABLED", "SynchronizeEnabled", "oammonlog"}) {
        EXPECT_EQ(Ask(keyword, "Choices.Count"), Is("2"));
        EXPECT_EQ(Ask(keyword, "CHOICES[0]"), Is("Yes"));
        EXPECT_EQ(Ask(keyword, "Choices[1]"), Is("No"));
        EXPECT_EQ(Ask(keyword, "Choices[2]"), Fails(OAMERR_NOT_FOUND));
    }
    EXPECT_EQ(Ask("Name", "Choices.Count"), Is("0"));
    EXPECT_EQ(Ask("Name", "Choices[0]"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(SupervisorQualifiers, FixedAnswersFitOnlyWithTheirTerminator) {
    EXPECT_EQ(AskWithSize("SynchronizeEnabled", "Choices[1]", 3), OAM_SUCCESS);
    EXPECT_EQ(AskWithSize("SynchronizeEnabled", "Choices[1]", 2), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(AskWithSize("SynchronizeEnabled", "Choices[0]", 3), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(AskWithSize("SynchronizeEnabled", "Choices.Count", 1), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(AskWithSize("Name", "ReadOnly", 3), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(AskWithSize("Name", "ReadOnly", 4), OAM_SUCCESS);
    EXPECT_EQ(AskWithSize("DetectedBoards", "Type", 5), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(AskWithSize("DetectedBoards", "Type", 6), OAM_SUCCESS);
}

TEST_F(SupervisorQualifiers, NullBufferAsksForExistence) {
    EXPECT_EQ(_oamGetQualifier(handle, "OammonLog", "Choices[0]", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(_oamGetQualifier(handle, "Name", "ReadOnly", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(_oamGetQualifier(handle, "DetectedBoards", "Type", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(_oamGetQualifier(handle, "OammonLog", "Choices[2]", nullptr, 0), OAMERR_NOT_FOUND);
}

TEST_F(SupervisorQualifiers, KeptDetectedBoardsHasTwoKeywordsByItsOwnAnswer) {
    EXPECT_EQ(Ask("DetectedBoards", "Type"), Is("Array"));
    EXPECT_EQ(Ask("DETECTEDBOARDS", "keywords.count"), Is("2"));
    EXPECT_EQ(Ask("DetectedBoards", "Keywords"), Is("2"));
}

TEST_F(SupervisorQualifiers, StoredOnesAreWrittenAtTheStart) {
    struct Row {
        const char* keyword;
        const char* description;
        const char* type;
    };
    for (const Row& row :
         {Row{"AutoStartEnabled", "enables automatic start of boards", "String"},
          Row{"AutoStopEnabled", "enables automatic stop of boards", "String"},
          Row{"Version.Major", "version major number", "Integer"},
          Row{"Version.Minor", "version minor number", "Integer"},
          Row{"OammonLog", "enables logging of board trace", "String"},
          Row{"SynchronizeEnabled", "enables synchronize start/stop operation", "String"},
          Row{"Name", "name of managed object", "Object"}}) {
        EXPECT_EQ(Ask(row.keyword, "Description"), Is(row.description));
        EXPECT_EQ(Ask(row.keyword, "Type"), Is(row.type));
    }
}

}  // namespace
}  // namespace oam::test
