// The start-up log: its file, its backup, its plain lines.
#include "support/file_limit.h"
#include "support/log_text.h"
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

class StartupLogFile : public ServiceTest {
  protected:
    // Starts with a component whose Init does this; the log is still open then.
    void StartWith(const std::function<void()>& act) {
        AddComponent("x.emc", [&](ModuleScript& script) {
            script.init = [act](const char*) { return act(), 0u; };
        });
        Start();
    }

    std::string Log() { return WithoutStamps(home.Read("oam/log/startup.log")); }
};

TEST_F(StartupLogFile, KeepsOneGenerationAsItsBackup) {
    home.Write("oam/log/startup.log", "first\n");
    home.Write("oam/log/startup.bak", "older than the first\n");
    Start();
    EXPECT_EQ(home.Read("oam/log/startup.bak"), "first\n");
    const std::string second = home.Read("oam/log/startup.log");
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(home.Read("oam/log/startup.bak"), second);
    EXPECT_THAT(home.List("oam/log"), ElementsAre("startup.bak", "startup.log"));
}

TEST_F(StartupLogFile, FirstStartMakesNoBackup) {
    Start();
    EXPECT_THAT(home.List("oam/log"), ElementsAre("startup.log"));
}

TEST_F(StartupLogFile, DotInADirectorysNameIsNotTheExtension) {
    home.MoveRoot("a.b");
    home.Write("oam/log/startup.log", "first\n");
    Start();
    EXPECT_EQ(home.Read("oam/log/startup.bak"), "first\n");
}

TEST_F(StartupLogFile, EndsBeforeTheServiceRuns) {
    Start();
    EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "Test", "too late"), OAM_SUCCESS);
    EXPECT_THAT(Log(), EndsWith(kLoggingStop));
    EXPECT_THAT(Log(), Not(HasSubstr("too late")));
}

TEST_F(StartupLogFile, PlainLineHasSourceSeverityLetterAndText) {
    StartWith([] {
        const char* text = "100%s %n";
        for (unsigned severity : {0u, 1u, 2u, 7u, 0xFFFFFFFFu}) {
            EXPECT_EQ(Raise(0x1234, severity, "Test %d", text), OAM_SUCCESS);
        }
        EXPECT_EQ(Raise(OAMEVN_STARTBOARD_DONE, 0, "", "two\nlines"), OAM_SUCCESS);
    });
    EXPECT_THAT(Log(), HasSubstr("Test %d(I): 100%s %n\n"
                                 "Test %d(W): 100%s %n\n"
                                 "Test %d(E): 100%s %n\n"
                                 "Test %d(E): 100%s %n\n"
                                 "Test %d(E): 100%s %n\n"
                                 "(I): two\nlines\n"));
}

TEST_F(StartupLogFile, ReceivesTheAlertsThatTheTraceLogLeavesOut) {
    StartWith([] {
        EXPECT_EQ(Raise(OAMEVN_MODIFIED, 0, "Test", "modified"), OAM_SUCCESS);
        EXPECT_EQ(Raise(OAMEVN_STOPBOARD_DONE, 0, "Test", "stopped"), OAM_SUCCESS);
        EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "Test", "traced"), OAM_SUCCESS);
        EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "Test", "reported"), OAM_SUCCESS);
    });
    EXPECT_THAT(Log(), HasSubstr("Test(I): modified\nTest(I): stopped\nTest(I): traced\n"
                                 "Test(I): reported\n"));
    EXPECT_THAT(home.Read("oam/log/oam.rpt"), EndsWith("reported"));
}

TEST_F(StartupLogFile, IsFlushedWithEveryLine) {
    std::string log;
    StartWith([&] {
        EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "Test", "text"), OAM_SUCCESS);
        log = home.Read("oam/log/startup.log");
    });
    EXPECT_THAT(log, EndsWith("Test(I): text\n"));
}

TEST_F(StartupLogFile, FailedWriteIsTheAlertsResultAndStopsNoReceiver) {
    unsigned result = 0;
    StartWith([&] {
        alerts.Clear();
        // Longer than any buffer in between, so that the write itself fails.
        const std::string text(1 << 20, 'x');
        FileSizeLimit limit(home.Read("oam/log/startup.log").size());
        result = Raise(OAMEVN_ALERT, 0, "Test", text);
    });
    EXPECT_EQ(result, OAMERR_FILE_WRITE_ERROR);
    EXPECT_EQ(alerts.HeardFrom("Test").size(), 1u);
}

TEST_F(StartupLogFile, LaterReceiversFailureReplacesAFailedWrite) {
    unsigned result = 0;
    alerts.AnswerWith([](const Alert& alert) { return alert.source == "Test" ? 0x55u : 0u; });
    StartWith([&] {
        const std::string text(1 << 20, 'x');
        FileSizeLimit limit(home.Read("oam/log/startup.log").size());
        result = Raise(OAMEVN_ALERT, 0, "Test", text);
    });
    EXPECT_EQ(result, 0x55u);
}

}  // namespace
}  // namespace oam::test
