// The Supervisor: its settings in two phases, what it refuses, and the trace log it switches.
#include "config_room.h"
#include "objects/kinds.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Supervisor : public ConfigRoom {
  protected:
    // Loads the object from a data file with these entries, opened by a provider.
    void Load(const Entries& entries) {
        home.WriteDataFile("Super.xmo", DataFile("Supervisor", entries));
        ASSERT_EQ(object.DbOpen(1, &handle, kProvide), OAM_SUCCESS);
    }
    void Init(const Entries& entries = {{"Name", "Supervisor"}}) {
        Load(entries);
        ASSERT_EQ(object.InitKeywords(), OAM_SUCCESS);
    }
    ~Supervisor() override {
        if (object.OpenCount() > 0) (void)object.DbClose(handle, true);
    }
    std::string Stored(const char* keyword) {
        char buffer[128] = "";
        return object.DbGetKeyword(keyword, buffer, sizeof buffer) == OAM_SUCCESS ? buffer
                                                                                  : "(none)";
    }
    oam_result Set(const char* keyword, const char* value) {
        return object.TrapSetKeyword(handle, keyword, value);
    }
    void Commit() {
        EXPECT_EQ(object.ValidateChanges(), OAM_SUCCESS);
        object.HandleChanges();
    }
    std::string Qualifier(const char* name, const char* qualifier, unsigned size = 64) {
        char buffer[64] = "(untouched)";
        const oam_result result = object.TrapGetQualifier(handle, name, qualifier, buffer, size);
        return result == OAM_SUCCESS ? buffer : result == OAMERR_NOT_FOUND ? "(none)" : "(error)";
    }

    CMOSuper object;
    unsigned long handle = 0;
};

TEST_F(Supervisor, WritesItsKeywordsAndTheirQualifiers) {
    Init();
    Entries written = SupervisorEntries();
    for (const char* unwritten : {"Name?Description", "Name?Type"}) {
        written = Without(written, unwritten);
    }
    EXPECT_EQ(EntriesOf(object), written);
}

TEST_F(Supervisor, TakesItsSettingsFromTheFileInAnyCaseOfYes) {
    Init({{"AutoStartEnabled", "yes"}, {"AutoStopEnabled", "true"}, {"SynchronizeEnabled", "YES"}});
    EXPECT_TRUE(g_bAutoStartEnabled);
    EXPECT_FALSE(g_bAutoStopEnabled);
    EXPECT_TRUE(g_bSynchronizeEnabled);
    EXPECT_EQ(Stored("AutoStartEnabled"), "Yes");
    EXPECT_EQ(Stored("AutoStopEnabled"), "No");
    EXPECT_EQ(Stored("SynchronizeEnabled"), "Yes");
}

TEST_F(Supervisor, MissingSettingsAreOff) {
    for (auto* setting : {&g_bAutoStartEnabled, &g_bAutoStopEnabled, &g_bSynchronizeEnabled}) {
        *setting = true;
    }
    Init();
    EXPECT_FALSE(g_bAutoStartEnabled);
    EXPECT_FALSE(g_bAutoStopEnabled);
    EXPECT_FALSE(g_bSynchronizeEnabled);
}

TEST_F(Supervisor, SettingOfMoreThan127CharactersIsOff) {
    Init({{"AutoStartEnabled", "Yes" + std::string(125, 's')}});
    EXPECT_FALSE(g_bAutoStartEnabled);
    EXPECT_EQ(Stored("AutoStartEnabled"), "No");
}

TEST_F(Supervisor, KeptTraceLogIsOffAfterEveryStart) {
    g_bOammonLog = true;
    Init({{"OammonLog", "Yes"}});
    EXPECT_FALSE(g_bOammonLog);
    EXPECT_EQ(Stored("OammonLog"), "No");
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Supervisor, VersionIsWrittenAnew) {
    Init({{"Version.Major", "99"}, {"Version.Minor", "99"}});
    EXPECT_EQ(Stored("Version.Major"), "1");
    EXPECT_EQ(Stored("Version.Minor"), "0");
}

TEST_F(Supervisor, FirstFailedWriteEndsTheInitialisation) {
    Load({{"AutoStartEnabled", "Yes"}});
    EXPECT_EQ(object.DbSetProviderMode(false), OAM_SUCCESS);
    EXPECT_EQ(object.InitKeywords(), OAMERR_ACCESS_DENIED) << "the qualifier";
    EXPECT_THAT(EntriesOf(object), ElementsAre(::testing::Pair("AutoStartEnabled", "Yes")));
    EXPECT_TRUE(g_bAutoStartEnabled) << "the flags come first";
}

TEST_F(Supervisor, RefusesItsNameAndEverythingThatBeginsWithVersion) {
    Init();
    for (const char* keyword : {"Name", "nAmE", "Version", "version.minor", "VERSION.Major",
                                "Versions", "VersionX.y"}) {
        EXPECT_EQ(Set(keyword, "x"), OAMERR_ACCESS_DENIED) << keyword;
    }
    EXPECT_EQ(Stored("Name"), "Supervisor");
    EXPECT_EQ(Stored("Version.Minor"), "0");
    EXPECT_EQ(Set("Versio", "x"), OAM_SUCCESS);
}

TEST_F(Supervisor, StoresASettingInItsOneSpelling) {
    Init();
    for (const char* keyword : {"AutoStartEnabled", "autostopenabled", "SYNCHRONIZEENABLED",
                                "OammonLog"}) {
        EXPECT_EQ(Set(keyword, "yES"), OAM_SUCCESS);
        EXPECT_EQ(Stored(keyword), "Yes");
        EXPECT_EQ(Set(keyword, "NO"), OAM_SUCCESS);
        EXPECT_EQ(Stored(keyword), "No");
        for (const char* bad : {"", "1", "true", "Yes ", "Y"}) {
            EXPECT_EQ(Set(keyword, bad), OAMERR_ACCESS_DENIED) << bad;
        }
        EXPECT_EQ(Stored(keyword), "No");
    }
}

TEST_F(Supervisor, StoresAnyOtherKeywordEvenOneThatIsComputed) {
    Init();
    doors.AnswerList("Boards", {"b"});
    EXPECT_EQ(Set("Boards[0]", "stored"), OAM_SUCCESS);
    EXPECT_EQ(Set("Boards[1]", "stored"), OAM_SUCCESS);
    char buffer[16];
    EXPECT_EQ(object.TrapGetKeyword(handle, "Boards[0]", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "b") << "hidden by the computed one";
    EXPECT_EQ(object.TrapGetKeyword(handle, "Boards[1]", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "stored") << "where nothing is computed";
    EXPECT_EQ(object.TrapGetKeyword(handle, "Boards.Count", buffer, 11), OAMERR_NOT_ENOUGH_MEMORY)
        << "any other failure is the answer";
}

TEST_F(Supervisor, SettingsTakeEffectWhenTheyAreHandled) {
    Init();
    EXPECT_EQ(Set("AutoStartEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(Set("SynchronizeEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(object.ValidateChanges(), OAM_SUCCESS);
    EXPECT_FALSE(g_bAutoStartEnabled) << "validated only";
    object.HandleChanges();
    EXPECT_TRUE(g_bAutoStartEnabled);
    EXPECT_FALSE(g_bAutoStopEnabled);
    EXPECT_TRUE(g_bSynchronizeEnabled);
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Supervisor, SettingThatIsNotStoredKeepsItsFlag) {
    Init();
    g_bAutoStopEnabled = true;
    EXPECT_EQ(object.DbRemoveKeyword("AutoStopEnabled"), OAM_SUCCESS);
    Commit();
    EXPECT_TRUE(g_bAutoStopEnabled);
}

TEST_F(Supervisor, SwitchesTheTraceLogOnlyWhenItsSettingChanges) {
    Init();
    EXPECT_EQ(Set("OammonLog", "Yes"), OAM_SUCCESS);
    Commit();
    EXPECT_THAT(doors.TakeCalls(),
                ElementsAre("AlertLogFileBeg(" + home.Path("oam/log/oammon.log") + ")"));
    EXPECT_TRUE(g_bOammonLog);
    Commit();
    EXPECT_THAT(doors.TakeCalls(), IsEmpty());
    EXPECT_EQ(Set("OammonLog", "No"), OAM_SUCCESS);
    Commit();
    EXPECT_THAT(doors.TakeCalls(), ElementsAre("AlertLogFileEnd()"));
    Commit();
    EXPECT_THAT(doors.TakeCalls(), IsEmpty());
}

TEST_F(Supervisor, MakesTheTraceLogsDirectories) {
    Init();
    home.Remove("oam/log");
    EXPECT_EQ(Set("OammonLog", "Yes"), OAM_SUCCESS);
    Commit();
    EXPECT_TRUE(home.Exists("oam/log"));
}

TEST_F(Supervisor, TraceLogThatCannotBeOpenedIsDroppedSilently) {
    Init();
    EXPECT_EQ(Set("OammonLog", "Yes"), OAM_SUCCESS);
    doors.Answer("AlertLogFileBeg", OAMERR_FILE_WRITE_ERROR);
    Commit();
    EXPECT_TRUE(g_bOammonLog);
    EXPECT_EQ(Stored("OammonLog"), "Yes");
    doors.TakeCalls();
    EXPECT_EQ(Set("OammonLog", "No"), OAM_SUCCESS);
    Commit();
    home.MoveRootToLength(115);
    EXPECT_EQ(Set("OammonLog", "Yes"), OAM_SUCCESS);
    Commit();
    EXPECT_THAT(doors.Calls(), ElementsAre("AlertLogFileEnd()")) << "the path does not fit";
}

TEST_F(Supervisor, TellsWhichKeywordsAreOnlyRead) {
    Init();
    for (const char* name : {"Name", "version", "Version.Major", "VersionX"}) {
        EXPECT_EQ(Qualifier(name, "READONLY"), "Yes") << name;
    }
    EXPECT_EQ(Qualifier("AutoStartEnabled", "ReadOnly"), "(none)") << "only what is stored";
    EXPECT_EQ(Qualifier("Boards", "ReadOnly"), "Yes") << "its trap says so";
}

TEST_F(Supervisor, TellsTheChoicesOfItsSettings) {
    Init();
    for (const char* name : {"AutoStartEnabled", "AutoStopEnabled", "oammonlog",
                             "SynchronizeEnabled"}) {
        EXPECT_EQ(Qualifier(name, "choices.count"), "2");
        EXPECT_EQ(Qualifier(name, "Choices[0]"), "Yes");
        EXPECT_EQ(Qualifier(name, "Choices[1]"), "No");
        EXPECT_EQ(Qualifier(name, "Choices[2]"), "(none)");
        EXPECT_EQ(Qualifier(name, "Type"), "String") << "stored";
    }
    EXPECT_EQ(Qualifier("SynchronizeEnabled", "Choices[1]", 3), "No");
    EXPECT_EQ(Qualifier("SynchronizeEnabled", "Choices[1]", 2), "(error)");
    EXPECT_EQ(Qualifier("Name", "Choices.Count"), "(none)");
}

TEST_F(Supervisor, KeptKeywordsOfDetectedBoardsAnswerTheirCount) {
    Init();
    EXPECT_EQ(Qualifier("DetectedBoards", "Type"), "Array");
    EXPECT_EQ(Qualifier("detectedboards", "Keywords.Count"), "2");
    EXPECT_EQ(Qualifier("DetectedBoards", "keywords"), "2");
    EXPECT_EQ(Qualifier("DetectedBoards", "Keywords[0]"), "Name") << "its trap goes on";
    EXPECT_EQ(Qualifier("DetectedBoards[0]", "Type"), "Struct");
}

TEST_F(Supervisor, StoresQualifiersAsTheyAre) {
    Init();
    EXPECT_EQ(object.TrapSetQualifier(handle, "AutoStartEnabled", "Max", "x"), OAM_SUCCESS);
    EXPECT_EQ(Qualifier("AutoStartEnabled", "Max"), "x");
    EXPECT_EQ(object.TrapSetQualifier(handle, "AutoStartEnabled", "Choices[0]", "x"), OAM_SUCCESS);
    EXPECT_EQ(Qualifier("AutoStartEnabled", "Choices[0]"), "Yes") << "hidden";
}

}  // namespace
}  // namespace oam::test
