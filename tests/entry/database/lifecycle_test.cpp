// Starting, stopping, restarting; clients that come and go.
#include "support/log_text.h"
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Lifecycle = ServiceTest;

Said stageDone() { return {OAMEVN_ALERT, 0, "DllMain", kStageDone}; }
Said banner(int stage) { return {OAMEVN_ALERT, 0, "DllMain", kStageBanners[stage]}; }

TEST_F(Lifecycle, HelloWritesNothingWhateverTheText) {
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    for (const char* text : {"", "hello", "%s%n%d", "two\nlines"}) _oamHello(text);
    _oamHello(nullptr);
    Start();
    const std::string log = home.Read("oam/log/startup.log");
    _oamHello("hello");
    DebugOutput("%s %d\n", "text", 7);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(home.Read("oam/log/startup.log"), log);
    EXPECT_THAT(home.List("oam/log"), ElementsAre("startup.log"));
}

static_assert(sizeof g_bOamIsRunning == 1);

TEST_F(Lifecycle, RunningFlagIsTrueBetweenInitAndExit) {
    EXPECT_FALSE(g_bOamIsRunning);
    Start();
    EXPECT_TRUE(g_bOamIsRunning);
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_FALSE(g_bOamIsRunning);
}

TEST_F(Lifecycle, RunningFlagIsSetAsTheLastStepOfInit) {
    bool seen = false;
    alerts.AnswerWith([&](const Alert&) {
        if (g_bOamIsRunning || _oamClientInit(kClient) != OAMERR_SERVER_NOT_RUNNING) seen = true;
        return 0u;
    });
    Start();
    EXPECT_EQ(alerts.Heard().size(), 7u);
    EXPECT_FALSE(seen) << "the flag was true during the start";
    EXPECT_TRUE(g_bOamIsRunning);
}

TEST_F(Lifecycle, RunningFlagIsClearedAsTheFirstStepOfExit) {
    std::vector<bool> seen;
    AddPlugin("x.bpi", [&](ModuleScript& script) {
        script.exit = [&] { return seen.push_back(g_bOamIsRunning), 0u; };
    });
    AddComponent("c.emc", [&](ModuleScript& script) {
        script.exit = [&] { return seen.push_back(g_bOamIsRunning), 0u; };
    });
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(seen, ElementsAre(false, false));
}

TEST_F(Lifecycle, SecondInitSucceedsAndWritesNothing) {
    Start();
    const std::string log = home.Read("oam/log/startup.log");
    alerts.Clear();
    EXPECT_EQ(_oamInit(), OAM_SUCCESS);
    EXPECT_EQ(home.Read("oam/log/startup.log"), log);
    EXPECT_THAT(home.List("oam/log"), ElementsAre("startup.log"));
    EXPECT_THAT(alerts.All(), IsEmpty());
}

TEST_F(Lifecycle, StartOfAnEmptyInstallationLogsFourStages) {
    Start();
    EXPECT_EQ(WithoutStamps(home.Read("oam/log/startup.log")), StartupLog());
}

TEST_F(Lifecycle, StampHasWeekdayMonthDayAndTimeWithoutTheYear) {
    Start();
    const std::string log = home.Read("oam/log/startup.log");
    EXPECT_EQ(log.substr(0, log.find('\n')).size(),
              std::string("Thu Nov 20 23:42:01").size() + std::string(" - Logging start").size());
}

TEST_F(Lifecycle, AlertsAreDispatchedFromTheFirstStagesDoneOn) {
    Start();
    EXPECT_THAT(alerts.Heard(), ElementsAre(stageDone(), banner(1), stageDone(), banner(2),
                                            stageDone(), banner(3), stageDone()));
}

TEST_F(Lifecycle, LinesOfAStageLieBetweenItsBannerAndItsDone) {
    AddPlugin("x.bpi");
    AddComponent("c.emc");
    home.WriteDataFile("Obj0.xmo", DataFile("Thing", StandardEntries("Thing")));
    const std::string thing = LoadingText(home.Path("oam/cfg/Obj0.xmo"));
    const std::string component = LoadingText(home.Path("lib/c.emc"));
    const std::string plugin = LoadingText(home.Path("lib/x.bpi"));
    Start();
    EXPECT_EQ(WithoutStamps(home.Read("oam/log/startup.log")),
              StartupLog(LogLine("Config", 'I', thing) + LogLine("Config", 'I', "Obj0.xmo DONE"),
                         LogLine("Emc", 'I', component) + LogLine("Emc", 'I', "c.emc DONE"),
                         LogLine("Plug-in", 'I', plugin) + LogLine("Plug-in", 'I', "x.bpi DONE")));
}

TEST_F(Lifecycle, StagesStartInOrderAndStopInReverse) {
    AddPlugin("x.bpi");
    AddComponent("c.emc");
    std::vector<unsigned> results;
    auto readDatabase = [&] {
        unsigned long handle = 0;
        results.push_back(_oamDbOpenObject("Supervisor", &handle, kRead));
        if (handle != 0) results.push_back(_oamDbCloseObject(handle));
        results.push_back(Raise(OAMEVN_ALERT, 0, "Module", "text"));
        return 0u;
    };
    auto readDatabaseAtInit = [&](const char*) { return readDatabase(); };
    for (const char* file : {"x.bpi", "c.emc"}) {
        recorder.Script(file, [&](ModuleScript& script) {
            script.init = readDatabaseAtInit;
            script.exit = readDatabase;
        });
    }
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(
        recorder.Lines({"Init", "Exit"}),
        ElementsAre("c.emc Init(c.emc)", "x.bpi Init(x.bpi)", "x.bpi Exit()", "c.emc Exit()"));
    EXPECT_EQ(results, std::vector<unsigned>(12, OAM_SUCCESS))
        << "database and alerts run before the modules start and until they have stopped";
}

TEST_F(Lifecycle, ExitWhileStoppedSucceedsAnyNumberOfTimes) {
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(_oamShutdown(), OAM_SUCCESS);
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_FALSE(g_bOamIsRunning);
}

TEST_F(Lifecycle, ShutdownIsExit) {
    AddPlugin("x.bpi");
    Start();
    EXPECT_EQ(_oamShutdown(), OAM_SUCCESS);
    EXPECT_FALSE(g_bOamIsRunning);
    EXPECT_EQ(recorder.Count("Exit"), 1u);
    EXPECT_EQ(_oamClientInit(kClient), OAMERR_SERVER_NOT_RUNNING);
}

TEST_F(Lifecycle, RestartStopsAndStartsAgainWithANewLog) {
    AddPlugin("x.bpi");
    Start();
    home.Write("oam/log/startup.log", "the first log\n");
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_TRUE(g_bOamIsRunning);
    EXPECT_THAT(recorder.Lines({"Init", "Exit"}),
                ElementsAre("x.bpi Init(x.bpi)", "x.bpi Exit()", "x.bpi Init(x.bpi)"));
    EXPECT_EQ(home.Read("oam/log/startup.bak"), "the first log\n");
    EXPECT_THAT(WithoutStamps(home.Read("oam/log/startup.log")),
                ::testing::StartsWith(kLoggingStart + StageLog(0)));
}

TEST_F(Lifecycle, RestartWhileStoppedStarts) {
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_TRUE(g_bOamIsRunning);
}

TEST_F(Lifecycle, RestartAnswersTheFreshInitsFailure) {
    Start();
    home.Write("lib/broken.emc", "not a library");
    EXPECT_EQ(_oamRestart(), 0xf0027u);
    EXPECT_FALSE(g_bOamIsRunning);
}

TEST_F(Lifecycle, RestartThatCannotWriteTheSupervisorsFileIsAWriteFailure) {
    Start();
    home.Remove("oam/cfg/Super.xmo");
    // Where it would be written first.
    home.MakeDirectory("oam/cfg/Super.xmo.making.saving");
    home.Write("oam/cfg/Super.xmo.making.saving/in the way", "");
    EXPECT_EQ(_oamRestart(), OAMERR_FILE_WRITE_ERROR);
    EXPECT_FALSE(g_bOamIsRunning);
}

TEST_F(Lifecycle, ClientInitTellsWhetherTheServiceRuns) {
    EXPECT_EQ(_oamClientInit(kClient), OAMERR_SERVER_NOT_RUNNING);
    Start();
    EXPECT_EQ(_oamClientInit(kClient), OAM_SUCCESS);
    EXPECT_EQ(_oamClientInit(kClient), OAM_SUCCESS);
    EXPECT_EQ(_oamShutdown(), OAM_SUCCESS);
    EXPECT_EQ(_oamClientInit(kClient), OAMERR_SERVER_NOT_RUNNING);
}

TEST_F(Lifecycle, ClientInitRegistersNothing) {
    Start();
    EXPECT_EQ(_oamClientInit(kClient), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertUnregister(kClient), OAMERR_NOT_FOUND);
}

TEST_F(Lifecycle, ClientExitNeedsARunningService) {
    EXPECT_EQ(_oamAlertRegister(kClient), OAM_SUCCESS);
    EXPECT_EQ(_oamClientExit(kClient), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(_oamAlertUnregister(kClient), OAM_SUCCESS) << "a refused exit changes nothing";
}

TEST_F(Lifecycle, ClientExitOfAStrangerSucceeds) {
    Start();
    EXPECT_EQ(_oamClientExit(12345), OAM_SUCCESS);
}

TEST_F(Lifecycle, ClientExitEndsTheClientsRegistrationAlone) {
    Start();
    EXPECT_EQ(_oamAlertRegister(kClient), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertRegister(kClient + 1), OAM_SUCCESS);
    EXPECT_EQ(_oamClientExit(kClient), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertUnregister(kClient), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamAlertUnregister(kClient + 1), OAM_SUCCESS);
}

TEST_F(Lifecycle, ExitEndsAllRegistrations) {
    Start();
    EXPECT_EQ(_oamAlertRegister(kClient), OAM_SUCCESS);
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertUnregister(kClient), OAMERR_NOT_FOUND);
}

}  // namespace
}  // namespace oam::test
