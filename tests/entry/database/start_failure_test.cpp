// A start that fails, stage by stage: its code, its log, and what is undone.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "support/log_text.h"
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class FailedStart : public ServiceTest {
  protected:
    void SetUp() override { EXPECT_EQ(_oamAlertRegister(kClient), OAM_SUCCESS); }

    // The exits have run: alerts are off and the registration is gone.
    void ExpectUndone() {
        EXPECT_FALSE(g_bOamIsRunning);
        EXPECT_EQ(_oamAlertUnregister(kClient), OAMERR_NOT_FOUND);
        EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "Test", "text"), OAMERR_SERVER_NOT_RUNNING);
        unsigned long handle = 0;
        EXPECT_EQ(_oamDbOpenObject("Supervisor", &handle, kRead), OAMERR_SERVER_NOT_RUNNING);
    }

    std::string Log() { return WithoutStamps(home.Read("oam/log/startup.log")); }
};

constexpr size_t kLongestRoot = 127 - std::string_view("/oam/log/startup.log").size();

TEST_F(FailedStart, LogPathOf127CharactersFits) {
    home.MoveRootToLength(kLongestRoot);
    Start();
    EXPECT_EQ(Log(), StartupLog());
}

TEST_F(FailedStart, KeptTooLongALogPathFailsWithoutRunningTheExits) {
    home.MoveRootToLength(kLongestRoot + 1);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_FALSE(g_bOamIsRunning);
    EXPECT_THAT(home.List("oam/log"), IsEmpty());
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
    EXPECT_THAT(alerts.All(), IsEmpty());
    EXPECT_EQ(_oamAlertUnregister(kClient), OAM_SUCCESS) << "the exits would have ended it";
}

TEST_F(FailedStart, InstallationDirectoryOf120CharactersIsTooLong) {
    home.MoveRootToLength(120);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
}

TEST_F(FailedStart, StartGoesOnWithoutALogThatCannotBeOpened) {
    home.MakeDirectory("oam/log/startup.log/occupied");
    home.MakeDirectory("oam/log/startup.bak/occupied");
    ASSERT_EQ(_oamInit(), OAM_SUCCESS);
    EXPECT_TRUE(g_bOamIsRunning);
    EXPECT_THAT(home.List("oam/log/startup.log"), ElementsAre("occupied"));
    EXPECT_EQ(alerts.Heard().size(), 7u) << "alerts do not depend on the log";
}

TEST_F(FailedStart, UnreadableDataFileStopsTheSecondStage) {
    AddComponent("c.emc");
    AddPlugin("x.bpi");
    std::filesystem::create_symlink("nowhere", home.Path("oam/cfg/Lost.xmo"));
    EXPECT_EQ(_oamInit(), OAMERR_FILE_READ_ERROR);
    EXPECT_EQ(Log(), kLoggingStart + StageLog(0) + LogLine("DllMain", 'I', kStageBanners[1]) +
                         kLoggingStop);
    EXPECT_THAT(recorder.Lines(), IsEmpty());
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Lost.xmo"));
    ExpectUndone();

    home.Remove("oam/cfg/Lost.xmo");
    EXPECT_EQ(_oamInit(), OAM_SUCCESS) << "the next start is not hindered";
}

TEST_F(FailedStart, BrokenComponentStopsTheThirdStage) {
    AddPlugin("x.bpi");
    home.Write("lib/broken.emc", "not a library");
    EXPECT_EQ(_oamInit(), 0xf0027u);
    EXPECT_EQ(Log(), kLoggingStart + StageLog(0) + StageLog(1) +
                         LogLine("DllMain", 'I', kStageBanners[2]) +
                         LogLine("Emc", 'I', LoadingText(home.Path("lib/broken.emc"))) +
                         LogLine("Emc", 'E', "!! FAILED !! (0xf0027)") + kLoggingStop);
    EXPECT_THAT(recorder.Lines(), IsEmpty());
    ExpectUndone();
}

TEST_F(FailedStart, RefusedPluginInitStopsTheFourthStageAndEndsTheComponents) {
    AddComponent("c.emc");
    AddPlugin("x.bpi",
              [](ModuleScript& script) { script.init = [](const char*) { return 0x1234u; }; });
    EXPECT_EQ(_oamInit(), 0x1234u);
    EXPECT_THAT(
        recorder.Lines({"Init", "Exit"}),
        ElementsAre("c.emc Init(c.emc)", "x.bpi Init(x.bpi)", "x.bpi Exit()", "c.emc Exit()"));
    const std::string plugin = LoadingText(home.Path("lib/x.bpi"));
    EXPECT_THAT(Log(), ::testing::EndsWith(LogLine("DllMain", 'I', kStageBanners[3]) +
                                           LogLine("Plug-in", 'I', plugin) +
                                           LogLine("Plug-in", 'E', "!! FAILED !! (0x1234)") +
                                           kLoggingStop));
    ExpectUndone();
}

TEST_F(FailedStart, CallbackStandsAfterIt) {
    home.Write("lib/broken.emc", "not a library");
    EXPECT_EQ(_oamInit(), 0xf0027u);
    home.Remove("lib/broken.emc");
    alerts.Clear();
    Start();
    EXPECT_THAT(alerts.Heard(), Not(IsEmpty()));
}

TEST(BareInstallation, StartMakesTheDirectoriesOfLogsAndDataFiles) {
    if (geteuid() != 0) GTEST_SKIP() << "the directories made are closed to ordinary users";
    Installation home(Layout::kBare);
    ASSERT_EQ(_oamInit(), OAM_SUCCESS);
    EXPECT_THAT(home.List("oam/log"), ElementsAre("startup.log"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo"));
    EXPECT_FALSE(home.Exists("lib"));
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
}

TEST(BareInstallation, KeptDirectoriesAreMadeWithTheDecimalNumber777) {
    Installation home(Layout::kBare);
    const mode_t before = umask(0);
    (void)_oamInit();
    umask(before);
    struct stat status {};
    ASSERT_EQ(stat(home.Path("oam").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 01411u);
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
}

}  // namespace
}  // namespace oam::test
