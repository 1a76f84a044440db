// The Supervisor's settings: how they are read at the start, set, committed and refused.
#include "support/log_text.h"
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::EndsWith;

constexpr const char* kSettings[] = {"AutoStartEnabled", "AutoStopEnabled", "SynchronizeEnabled",
                                     "OammonLog"};

class SupervisorSettings : public ServiceTest {
  protected:
    void StartWithSetting(const std::string& keyword, const std::string& value) {
        EXPECT_EQ(_oamExit(), OAM_SUCCESS);
        home.WriteDataFile("Super.xmo",
                           DataFile("Supervisor", {{keyword, value}, {"Name", "Supervisor"}}));
        Start();
    }

    // A board that is marked for automatic start and stop.
    void AddMarkedBoard() {
        AddPluginFor("x.bpi", {"Prod"});
        home.WriteDataFile("Obj0.xmo", DataFile("Board", {{"AutoStart", "Yes"},
                                                          {"AutoStop", "Yes"},
                                                          {"Name", "Board"},
                                                          {"Number", "0"},
                                                          {"Product", "Prod"}}));
    }
    unsigned AutoStart() {
        unsigned on = 99;
        EXPECT_EQ(_oamBoardGetAutoStartEnabled("Board", &on), OAM_SUCCESS);
        return on;
    }
    unsigned AutoStop() {
        unsigned on = 99;
        EXPECT_EQ(_oamBoardGetAutoStopEnabled("Board", &on), OAM_SUCCESS);
        return on;
    }
};

TEST_F(SupervisorSettings, StoredYesInAnyCaseIsYes) {
    for (const char* keyword : {"AutoStartEnabled", "AutoStopEnabled", "SynchronizeEnabled"}) {
        for (const char* value : {"yes", "YES", "Yes", "yEs"}) {
            StartWithSetting(keyword, value);
            EXPECT_EQ(StoredKeywordOf("Supervisor", keyword), Is("Yes")) << keyword << value;
        }
    }
}

TEST_F(SupervisorSettings, EverythingElseThatIsStoredIsNo) {
    for (const char* keyword : {"AutoStartEnabled", "AutoStopEnabled", "SynchronizeEnabled"}) {
        for (const char* value : {"no", "true", "1", "on", "y", "Yes!", ""}) {
            StartWithSetting(keyword, value);
            EXPECT_EQ(StoredKeywordOf("Supervisor", keyword), Is("No")) << keyword << value;
        }
    }
}

TEST_F(SupervisorSettings, KeptTraceLoggingIsOffAfterTheStartWhateverIsStored) {
    StartWithSetting("OammonLog", "Yes");
    EXPECT_EQ(StoredKeywordOf("Supervisor", "OammonLog"), Is("No"));
    EXPECT_FALSE(home.Exists("oam/log/oammon.log"));
}

TEST_F(SupervisorSettings, StoredTooLongIsNo) {
    StartWithSetting("AutoStartEnabled", std::string(200, 'y'));
    EXPECT_EQ(StoredKeywordOf("Supervisor", "AutoStartEnabled"), Is("No"));
}

TEST_F(SupervisorSettings, AreReadFromTheFileAtTheStart) {
    AddMarkedBoard();
    Start();
    EXPECT_EQ(AutoStart(), 0u);
    EXPECT_EQ(AutoStop(), 0u);
    StartWithSetting("AutoStartEnabled", "yes");
    EXPECT_EQ(AutoStart(), 1u);
    EXPECT_EQ(AutoStop(), 0u);
    StartWithSetting("AutoStopEnabled", "yes");
    EXPECT_EQ(AutoStart(), 0u) << "a missing keyword is No";
    EXPECT_EQ(AutoStop(), 1u);
}

TEST_F(SupervisorSettings, ApplyWhenTheyAreCommittedAndNotBefore) {
    AddMarkedBoard();
    Start();
    const unsigned long handle = Open("Supervisor", kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "AutoStartEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(handle, "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(AutoStart(), 0u);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(AutoStart(), 1u);
    EXPECT_EQ(AutoStop(), 1u);
    EXPECT_EQ(Change("Supervisor", "autostartenabled", "no"), OAM_SUCCESS);
    EXPECT_EQ(AutoStart(), 0u);
    EXPECT_EQ(AutoStop(), 1u);
}

TEST_F(SupervisorSettings, YesAndNoAreTakenInAnyCaseAndStoredInOne) {
    Start();
    for (const char* keyword : kSettings) {
        for (const char* value : {"yes", "YES", "yeS"}) {
            EXPECT_EQ(Change("Supervisor", keyword, value), OAM_SUCCESS);
            EXPECT_EQ(KeywordOf("Supervisor", keyword), Is("Yes"));
        }
        for (const char* value : {"no", "NO", "No"}) {
            EXPECT_EQ(Change("Supervisor", keyword, value), OAM_SUCCESS);
            EXPECT_EQ(KeywordOf("Supervisor", keyword), Is("No"));
        }
    }
}

TEST_F(SupervisorSettings, OtherValuesAreRefusedAndStoreNothing) {
    Start();
    const unsigned long handle = Open("Supervisor", kProvider);
    for (const char* keyword : kSettings) {
        EXPECT_EQ(_oamSetKeyword(handle, keyword, "Yes"), OAM_SUCCESS);
        for (const char* value : {"", "true", "1", "Yes ", " Yes", "Y", "None"}) {
            EXPECT_EQ(_oamSetKeyword(handle, keyword, value), OAMERR_ACCESS_DENIED) << value;
            EXPECT_EQ(GetKeyword(handle, keyword), Is("Yes"));
        }
        EXPECT_EQ(_oamSetKeyword(handle, keyword, "No"), OAM_SUCCESS);
    }
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_F(SupervisorSettings, NameAndVersionCannotBeWritten) {
    Start();
    const unsigned long handle = Open("Supervisor", kProvider);
    for (const char* keyword : {"Name", "NAME", "Version", "version", "Version.Major",
                                "VERSION.minor", "VersionX", "Version.Own", "Versions"}) {
        EXPECT_EQ(_oamSetKeyword(handle, keyword, "1"), OAMERR_ACCESS_DENIED) << keyword;
    }
    EXPECT_EQ(_oamSetKeyword(handle, "Versio", "1"), OAM_SUCCESS) << "six letters are another name";
    EXPECT_EQ(_oamSetKeyword(handle, "Names", "1"), OAM_SUCCESS);
    EXPECT_EQ(GetKeyword(handle, "Version.Major"), Is("1"));
    EXPECT_EQ(GetKeyword(handle, "Version.Minor"), Is("0"));
    EXPECT_EQ(GetKeyword(handle, "VersionX"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_F(SupervisorSettings, OtherKeywordsAreStoredAsTheyAre) {
    Start();
    const unsigned long handle = Open("Supervisor", kProvider);
    EXPECT_EQ(_oamSetKeyword(handle, "Own", "yes"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetProviderMode(handle, false), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(handle, "Other", "x"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(_oamSetKeyword(handle, "OWN", "YES"), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "Own"), Is("YES"));
}

TEST_F(SupervisorSettings, ChangeThroughTheDatabaseAppliesToo) {
    AddMarkedBoard();
    Start();
    EXPECT_EQ(DbChange("Supervisor", "AutoStartEnabled", "YES"), OAM_SUCCESS);
    EXPECT_EQ(AutoStart(), 1u);
    EXPECT_EQ(StoredKeywordOf("Supervisor", "AutoStartEnabled"), Is("YES")) << "stored raw";
    EXPECT_EQ(DbChange("Supervisor", "AutoStartEnabled", "anything"), OAM_SUCCESS);
    EXPECT_EQ(AutoStart(), 0u);
}

TEST_F(SupervisorSettings, RemovedKeywordLeavesTheSettingAsItWas) {
    AddMarkedBoard();
    Start();
    EXPECT_EQ(Change("Supervisor", "AutoStartEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(Change("Supervisor", "OammonLog", "Yes"), OAM_SUCCESS);
    const unsigned long handle = DbOpen("Supervisor", kProvider);
    EXPECT_EQ(_oamDbRemoveKeyword(handle, "AutoStartEnabled"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbRemoveKeyword(handle, "OammonLog"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(AutoStart(), 1u);
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "Test", "still traced"), OAM_SUCCESS);
    EXPECT_THAT(home.Read("oam/log/oammon.log"), EndsWith("still traced"));
}

TEST_F(SupervisorSettings, TooLongAValueLeavesTheSettingAsItWas) {
    AddMarkedBoard();
    Start();
    EXPECT_EQ(Change("Supervisor", "AutoStartEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(DbChange("Supervisor", "AutoStartEnabled", std::string(128, 'n')), OAM_SUCCESS);
    EXPECT_EQ(AutoStart(), 1u) << "a value that cannot be read is no value";
}

TEST_F(SupervisorSettings, RefusedCommitAppliesNothing) {
    AddMarkedBoard();
    Start();
    const unsigned long handle = DbOpen("Supervisor", kProvider);
    EXPECT_EQ(_oamDbSetKeyword(handle, "AutoStartEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbRemoveKeyword(handle, "Name"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAMERR_NOT_FOUND);
    EXPECT_EQ(AutoStart(), 0u);
    EXPECT_EQ(KeywordOf("Supervisor", "AutoStartEnabled"), Is("No"));
}

}  // namespace
}  // namespace oam::test
