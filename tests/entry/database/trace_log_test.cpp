// The board-trace log: opened and closed by the Supervisor's "OammonLog", and its line format.
#include <unistd.h>

#include "support/file_limit.h"
#include "support/log_text.h"
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* kTrace = "oam/log/oammon.log";

class TraceLog : public ServiceTest {
  protected:
    void Switch(const char* value) {
        EXPECT_EQ(Change("Supervisor", "OammonLog", value), OAM_SUCCESS);
    }

    std::string Log() { return WithoutStamps(home.Read(kTrace)); }

    // The log of one alert after switching on.
    std::string LogOf(unsigned code, unsigned severity, const std::string& source,
                      const std::string& text) {
        Start();
        Switch("Yes");
        EXPECT_EQ(Raise(code, severity, source, text), OAM_SUCCESS);
        const std::string log = Log();
        EXPECT_THAT(log, StartsWith(kLoggingStart));
        return log.substr(std::min(log.size(), std::string(kLoggingStart).size()));
    }

    void AddBoard(const std::string& name, unsigned number) {
        AddPluginFor("x.bpi", {"Prod"});
        home.WriteDataFile("Obj0.xmo", DataFile(name, {{"Name", name},
                                                       {"Number", std::to_string(number)},
                                                       {"Product", "Prod"}}));
    }
};

TEST_F(TraceLog, OpensAndClosesWithTheSetting) {
    Start();
    EXPECT_FALSE(home.Exists(kTrace));
    Switch("Yes");
    EXPECT_EQ(Log(), kLoggingStart) << "the line is in the file at once";
    Switch("No");
    EXPECT_EQ(Log(), std::string(kLoggingStart) + kLoggingStop);
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "Test", "too late"), OAM_SUCCESS);
    EXPECT_EQ(Log(), std::string(kLoggingStart) + kLoggingStop);
    EXPECT_FALSE(home.Exists("oam/log/oammon.bak"));
}

TEST_F(TraceLog, KeepsOneGenerationAsItsBackup) {
    Start();
    for (const char* text : {"first", "second", "third"}) {
        Switch("Yes");
        EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "Test", text), OAM_SUCCESS);
        Switch("No");
    }
    EXPECT_EQ(Log(), std::string(kLoggingStart) + "third" + kLoggingStop);
    EXPECT_EQ(WithoutStamps(home.Read("oam/log/oammon.bak")),
              std::string(kLoggingStart) + "second" + kLoggingStop);
}

TEST_F(TraceLog, StaysOpenWhenTheSettingIsCommittedAgain) {
    Start();
    Switch("Yes");
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "Test", "before"), OAM_SUCCESS);
    Switch("yes");
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "Test", "after"), OAM_SUCCESS);
    EXPECT_EQ(Log(), std::string(kLoggingStart) + "beforeafter");
    EXPECT_FALSE(home.Exists("oam/log/oammon.bak"));
}

TEST_F(TraceLog, EndsWithTheService) {
    Start();
    Switch("Yes");
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(Log(), std::string(kLoggingStart) + kLoggingStop);
}

TEST_F(TraceLog, KeptIsOffAfterEveryStart) {
    Start();
    Switch("Yes");
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "OammonLog"), Is("No"));
    const std::string log = Log();
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_EQ(Log(), log);
    Switch("Yes");
    EXPECT_EQ(Log(), kLoggingStart) << "switching on works again";
}

TEST_F(TraceLog, BoardsStoppedAtTheEndHaveNoNumberAnyMore) {
    AddPluginFor("x.bpi", {"Prod"});
    home.WriteDataFile(
        "Obj0.xmo",
        DataFile("Board",
                 {{"AutoStop", "Yes"}, {"Name", "Board"}, {"Number", "3"}, {"Product", "Prod"}}));
    Start();
    EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    Switch("Yes");
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(Log(), kLoggingStart +
                         std::string("  <STAMP - OAMEVN_STOPBOARD_REQ INFO \"Board\">\n"
                                     "Stop board in 150ms.\n") +
                         kLoggingStop)
        << "the board queries answer no more";
}

TEST_F(TraceLog, MakesItsDirectoryAgain) {
    if (geteuid() != 0) GTEST_SKIP() << "the directories made are closed to ordinary users";
    Start();
    home.Remove("oam/log");
    Switch("Yes");
    EXPECT_EQ(Log(), kLoggingStart);
}

TEST_F(TraceLog, SettingHoldsWithoutALogThatCannotBeOpened) {
    Start();
    home.MakeDirectory("oam/log/oammon.log/occupied");
    home.MakeDirectory("oam/log/oammon.bak/occupied");
    Switch("Yes");
    EXPECT_EQ(KeywordOf("Supervisor", "OammonLog"), Is("Yes"));
    EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "Test", "text"), OAM_SUCCESS);
    Switch("No");
    home.Remove("oam/log/oammon.log");
    home.Remove("oam/log/oammon.bak");
    Switch("Yes");
    EXPECT_EQ(Log(), kLoggingStart);
}

TEST_F(TraceLog, AlertIsARecordOfTwoLines) {
    EXPECT_EQ(LogOf(OAMEVN_ALERT, 0, "Source %s", "The text %n"),
              "  <STAMP - OAMEVN_ALERT INFO \"Source %s\">\nThe text %n\n");
}

TEST_F(TraceLog, SeverityOneIsAWarning) {
    EXPECT_EQ(LogOf(OAMEVN_TEMPERATURE_WARNING, 1, "S", "T"),
              "  <STAMP - OAMEVN_TEMPERATURE_WARNING WARNING \"S\">\nT\n");
}

TEST_F(TraceLog, EveryOtherSeverityIsAnError) {
    EXPECT_EQ(LogOf(OAMEVN_BOARD_DEAD, 7, "S", "T"),
              "  <STAMP - OAMEVN_BOARD_DEAD ERROR \"S\">\nT\n");
    EXPECT_EQ(Raise(OAMEVN_BOARD_DEAD, 2, "S", "T"), OAM_SUCCESS);
    EXPECT_THAT(Log(), ::testing::EndsWith("\nT\n  <STAMP - OAMEVN_BOARD_DEAD ERROR \"S\">\nT\n"));
}

TEST_F(TraceLog, BoardsNumberStandsBeforeItsName) {
    AddBoard("B3", 3);
    EXPECT_EQ(LogOf(OAMEVN_STARTBOARD_DONE, 2, "B3", "Failed"),
              "  <STAMP - OAMEVN_STARTBOARD_DONE ERROR  Board 3\"B3\">\nFailed\n");
}

TEST_F(TraceLog, BoardIsFoundInAnyCaseAndNamedAsTheAlertDoes) {
    AddBoard("B3", 4000000000u);
    EXPECT_EQ(LogOf(OAMEVN_TESTBOARD_DONE, 0, "b3", "Done"),
              "  <STAMP - OAMEVN_TESTBOARD_DONE INFO  Board 4000000000\"b3\">\nDone\n");
}

TEST_F(TraceLog, ObjectThatIsNoBoardHasNoNumber) {
    AddBoard("B3", 3);
    EXPECT_EQ(LogOf(OAMEVN_ALERT, 0, "Supervisor", "T"),
              "  <STAMP - OAMEVN_ALERT INFO \"Supervisor\">\nT\n");
}

TEST_F(TraceLog, CodeWithoutANameIsWrittenAsANumber) {
    EXPECT_EQ(LogOf(0x1234ABC, 0, "S", "T"), "  <STAMP - 0x01234abc INFO \"S\">\nT\n");
}

TEST_F(TraceLog, CodeOfAModuleHasTheModulesName) {
    AddPlugin("x.bpi", [](ModuleScript& script) { script.texts = {{0x5000, "MY_EVENT"}}; });
    EXPECT_EQ(LogOf(0x5000, 0, "S", "T"), "  <STAMP - MY_EVENT INFO \"S\">\nT\n");
}

TEST_F(TraceLog, TraceAlertIsItsBareText) {
    EXPECT_EQ(LogOf(OAMEVN_TRACE, 2, "Source", "bare 100%s %n"), "bare 100%s %n");
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "Source", "\nmore"), OAM_SUCCESS);
    EXPECT_EQ(Log(), std::string(kLoggingStart) + "bare 100%s %n\nmore");
}

TEST_F(TraceLog, KeptLeavesOutChangesReportsAndFinishedStops) {
    Start();
    Switch("Yes");
    for (unsigned code : {OAMEVN_REPORT, OAMEVN_CREATED, OAMEVN_DELETED, OAMEVN_RENAMED,
                          OAMEVN_MODIFIED, OAMEVN_STOPBOARD_DONE}) {
        EXPECT_EQ(Raise(code, 0, "S", "T"), OAM_SUCCESS);
    }
    EXPECT_EQ(Log(), kLoggingStart);
    EXPECT_EQ(alerts.HeardFrom("S").size(), 5u) << "all but the report are delivered";
}

TEST_F(TraceLog, HoldsEveryOtherEvent) {
    Start();
    Switch("Yes");
    std::string expected = kLoggingStart;
    for (unsigned code : {OAMEVN_ALERT, OAMEVN_BOARD_DEAD, OAMEVN_TEMPERATURE_WARNING,
                          OAMEVN_TEMPERATURE_ALERT, OAMEVN_FAN_RPM_WARNING, OAMEVN_STARTBOARD_DONE,
                          OAMEVN_TESTBOARD_DONE, OAMEVN_STOPBOARD_REQ, OAMEVN_BASE}) {
        EXPECT_EQ(Raise(code, 0, "S", "T"), OAM_SUCCESS);
        expected += "  <STAMP - " + std::string(_oamGetText(code)) + " INFO \"S\">\nT\n";
    }
    EXPECT_EQ(Log(), expected);
}

TEST_F(TraceLog, ModifiedAlertsOfTheServiceLeaveNoLine) {
    Start();
    Switch("Yes");
    alerts.Clear();
    EXPECT_EQ(Change("Supervisor", "AutoStartEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(OAMEVN_MODIFIED), Not(IsEmpty()));
    EXPECT_EQ(Log(), kLoggingStart);
}

TEST_F(TraceLog, KeptFailedWriteRewindsSoThatLaterAlertsOverwriteTheStart) {
    Start();
    Switch("Yes");
    EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "S", std::string(2000, 'x')), OAM_SUCCESS);
    {
        FileSizeLimit limit(home.Read(kTrace).size());
        EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "S", std::string(1 << 20, 'y')), OAM_SUCCESS)
            << "a trace that cannot be written is no failure of the alert";
    }
    EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "S", "later"), OAM_SUCCESS);
    EXPECT_THAT(Log(), StartsWith("  <STAMP - OAMEVN_ALERT INFO \"S\">\n"));
}

TEST_F(TraceLog, KeptFailedTraceTextRewindsToo) {
    Start();
    Switch("Yes");
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "S", std::string(2000, 'x')), OAM_SUCCESS);
    {
        FileSizeLimit limit(home.Read(kTrace).size());
        EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "S", std::string(1 << 20, 'y')), OAM_SUCCESS);
    }
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "S", "later"), OAM_SUCCESS);
    EXPECT_THAT(Log(), Not(StartsWith(kLoggingStart)));
}

TEST_F(TraceLog, AlertsWithoutALogCostNothing) {
    Start();
    EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "S", "T"), OAM_SUCCESS);
    EXPECT_THAT(home.List("oam/log"), ElementsAre("startup.log"));
}

}  // namespace
}  // namespace oam::test
