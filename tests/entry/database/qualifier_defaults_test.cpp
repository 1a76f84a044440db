// Qualifiers read by clients, with the defaults of those that are not stored.
#include "support/service_test.h"

namespace oam::test {
namespace {

struct Default {
    const char* qualifier;
    const char* value;
};

constexpr Default kDefaults[] = {
    {"Base", "10"},   {"Choices.Count", "0"}, {"Description", ""}, {"Keywords.Count", "0"},
    {"Max", "32767"}, {"Min", "0"},           {"ReadOnly", "No"},  {"Type", "String"},
};

// The object of a plug-in, which answers qualifiers from the database.
class QualifierDefaults : public ServiceTest {
  protected:
    void SetUp() override {
        AddPlugin("x.bpi");
        Start();
        handle = Open("x.bpi", kProvider);
    }
    void TearDown() override {
        EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
        ServiceTest::TearDown();
    }

    unsigned long handle = 0;
};

TEST_F(QualifierDefaults, StandForWhatIsNotStored) {
    for (const Default& row : kDefaults) {
        EXPECT_EQ(GetQualifier(handle, "Bus", row.qualifier), Is(row.value)) << row.qualifier;
        EXPECT_EQ(GetQualifier(handle, "No such keyword", row.qualifier), Is(row.value));
        EXPECT_EQ(_oamGetQualifier(handle, "Bus", row.qualifier, nullptr, 0), OAM_SUCCESS);
    }
}

TEST_F(QualifierDefaults, AreFoundInAnyCase) {
    EXPECT_EQ(GetQualifier(handle, "Bus", "MAX"), Is("32767"));
    EXPECT_EQ(GetQualifier(handle, "Bus", "choices.COUNT"), Is("0"));
}

TEST_F(QualifierDefaults, OtherQualifiersHaveNone) {
    for (const char* name : {"", "Unit", "Maximum", "Ma", "Choices", "Choices[0]", "Keywords"}) {
        EXPECT_EQ(GetQualifier(handle, "Bus", name), Fails(OAMERR_NOT_FOUND)) << name;
        EXPECT_EQ(_oamGetQualifier(handle, "Bus", name, nullptr, 0), OAMERR_NOT_FOUND) << name;
    }
}

TEST_F(QualifierDefaults, FitOnlyWithTheirTerminator) {
    for (const Default& row : kDefaults) {
        const auto length = static_cast<unsigned>(std::string(row.value).size());
        char buffer[8] = "mine";
        EXPECT_EQ(_oamGetQualifier(handle, "Bus", row.qualifier, buffer, length),
                  OAMERR_NOT_ENOUGH_MEMORY)
            << row.qualifier;
        EXPECT_STREQ(buffer, "mine");
        EXPECT_EQ(_oamGetQualifier(handle, "Bus", row.qualifier, buffer, length + 1), OAM_SUCCESS);
        EXPECT_STREQ(buffer, row.value);
    }
}

TEST_F(QualifierDefaults, GiveWayToAStoredQualifier) {
    EXPECT_EQ(_oamDbSetQualifier(handle, "Bus", "Max", "255"), OAM_SUCCESS);
    EXPECT_EQ(GetQualifier(handle, "bus", "max"), Is("255"));
    EXPECT_EQ(GetQualifier(handle, "Slot", "Max"), Is("32767"));
    EXPECT_EQ(_oamDbRemoveQualifier(handle, "Bus", "Max"), OAM_SUCCESS);
    EXPECT_EQ(GetQualifier(handle, "Bus", "Max"), Is("32767"));
}

TEST_F(QualifierDefaults, GiveWayToEveryAnswerOfThePluginButNotFound) {
    unsigned answer = 0x1234;
    recorder.Script("x.bpi", [&](ModuleScript& script) {
        script.getQualifier = [&](unsigned long, const char*, const char*, char*, unsigned) {
            return answer;
        };
    });
    EXPECT_EQ(GetQualifier(handle, "Bus", "Max"), Fails(0x1234));
    answer = OAMERR_NOT_ENOUGH_MEMORY;
    EXPECT_EQ(GetQualifier(handle, "Bus", "Max"), Fails(OAMERR_NOT_ENOUGH_MEMORY));
    answer = OAMERR_NOT_FOUND;
    EXPECT_EQ(GetQualifier(handle, "Bus", "Max"), Is("32767"));
}

TEST_F(QualifierDefaults, StoredQualifierTooLongForTheBufferIsNotReplaced) {
    EXPECT_EQ(_oamDbSetQualifier(handle, "Bus", "Min", "100"), OAM_SUCCESS);
    char buffer[3] = "m";
    EXPECT_EQ(_oamGetQualifier(handle, "Bus", "Min", buffer, sizeof buffer),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "m");
}

}  // namespace
}  // namespace oam::test
