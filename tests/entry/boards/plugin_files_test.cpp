// Which files of the library directory are loaded as board plug-ins, in which order, and what the
// start-up log tells of them.
#include <dlfcn.h>

#include <algorithm>
#include <filesystem>

#include "boards.h"
#include "module_log.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PluginFiles : public ServiceTest {
  protected:
    std::string StageOfPlugins() const {
        return StageLines(home.Read("oam/log/startup.log"), kPluginStage);
    }
    std::vector<std::string> Listed() const {
        std::vector<std::string> names;
        for (int index = 0;; ++index) {
            const Answer name =
                KeywordOf("Supervisor", "BoardPlugins[" + std::to_string(index) + "]");
            if (name.code != OAM_SUCCESS) break;
            names.push_back(name.text);
        }
        EXPECT_EQ(KeywordOf("Supervisor", "BoardPlugins.Count"), Is(std::to_string(names.size())));
        return names;
    }
};

TEST_F(PluginFiles, AreLoadedInitialisedAndReportedOnTheStartUpLog) {
    AddPlugin("rec.bpi");
    Start();
    EXPECT_EQ(StageOfPlugins(),
              LoadingLine("Plug-in", home.Path("lib/rec.bpi")) + DoneLine("Plug-in", "rec.bpi"));
    EXPECT_THAT(recorder.Lines({"Init", "Exit"}), ElementsAre("rec.bpi Init(rec.bpi)"));
    EXPECT_THAT(Listed(), ElementsAre("rec.bpi"));
}

TEST_F(PluginFiles, MayBeMissingTogetherWithTheirDirectory) {
    home.Remove("lib");
    Start();
    EXPECT_EQ(StageOfPlugins(), "");
    EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(PluginFiles, MayBeMissingWhereTheDirectoryIsAFile) {
    home.Remove("lib");
    home.Write("lib", "not a directory");
    Start();
    EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(PluginFiles, MayBeMissingInTheDirectory) {
    home.Write("lib/readme.txt", "nothing to load");
    Start();
    EXPECT_EQ(StageOfPlugins(), "");
    EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(PluginFiles, AreKnownByTheirLastExtensionInAnyCase) {
    AddPlugin("X.BPI");
    for (const char* other : {"x.bpi.bak", "x.bp", "xbpi", "x.bpix", "bpi", "x.so"}) {
        home.Write(std::string("lib/") + other, "not to be loaded");
    }
    Start();
    EXPECT_THAT(Listed(), ElementsAre("X.BPI"));
    EXPECT_THAT(recorder.Lines({"Init"}), ElementsAre("X.BPI Init(X.BPI)"));
}

TEST_F(PluginFiles, MayHaveDotsBeforeTheirExtension) {
    AddPlugin("a.b.bpi");
    Start();
    EXPECT_THAT(Listed(), ElementsAre("a.b.bpi"));
    EXPECT_TRUE(home.Exists("oam/cfg/a.xmo"));
}

TEST_F(PluginFiles, AreListedByNameWithoutRegardToCase) {
    for (const char* file : {"B.bpi", "a.BPI", "c.bpi"}) AddPlugin(file);
    Start();
    EXPECT_THAT(Listed(), ElementsAre("a.BPI", "B.bpi", "c.bpi"));
}

TEST_F(PluginFiles, AreInitialisedInTheDirectorysOrderAndEndedInThatOfTheirNames) {
    for (const char* file : {"d.bpi", "B.bpi", "a.BPI", "e.bpi", "C.BPI"}) AddPlugin(file);
    Start();
    std::vector<std::string> initialised;
    for (const std::string& file : DirectoryOrder(home.Path("lib"))) {
        initialised.push_back(file + " Init(" + file + ")");
    }
    EXPECT_EQ(recorder.Lines({"Init"}), initialised);
    recorder.Clear();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"Init", "Exit"}),
                ElementsAre("a.BPI Exit()", "B.bpi Exit()", "C.BPI Exit()", "d.bpi Exit()",
                            "e.bpi Exit()"));
}

TEST_F(PluginFiles, AreLoggedOneAfterAnotherInTheDirectorysOrder) {
    for (const char* file : {"two.bpi", "one.bpi", "three.bpi"}) AddPlugin(file);
    Start();
    std::string expected;
    for (const std::string& file : DirectoryOrder(home.Path("lib"))) {
        expected += LoadingLine("Plug-in", home.Path("lib/" + file)) + DoneLine("Plug-in", file);
    }
    EXPECT_EQ(StageOfPlugins(), expected);
}

TEST_F(PluginFiles, MayBeMoreThanOneGrowthStep) {
    std::vector<std::string> expected;
    for (int i = 39; i >= 10; --i) AddPlugin("p" + std::to_string(i) + ".bpi");
    for (int i = 10; i <= 39; ++i) expected.push_back("p" + std::to_string(i) + ".bpi");
    Start();
    EXPECT_EQ(Listed(), expected);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(Listed(), expected);
}

TEST_F(PluginFiles, GetAnObjectWithItsDataFile) {
    AddPlugin("rec.bpi");
    Start();
    EXPECT_THAT(Objects(), ElementsAre("rec.bpi", "Supervisor"));
    EXPECT_EQ(home.ReadDataFile("rec.xmo"), DataFile("rec.bpi", StandardEntries("rec.bpi")));
}

TEST_F(PluginFiles, KeepTheObjectOfAnEarlierRun) {
    AddPlugin("rec.bpi");
    Start();
    EXPECT_EQ(DbChange("rec.bpi", "Remark", "kept"), OAM_SUCCESS);
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    recorder.Clear();
    Start();
    EXPECT_THAT(recorder.Lines({"Init"}), ElementsAre("rec.bpi Init(rec.bpi)"));
    EXPECT_EQ(StoredKeywordOf("rec.bpi", "Remark"), Is("kept"));
    EXPECT_EQ(KeywordOf("Supervisor", "BoardPlugins.Count"), Is("1"));
}

TEST_F(PluginFiles, StayMappedAfterTheServiceEnded) {
    AddPlugin("rec.bpi");
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    void* mapped = dlopen(home.Path("lib/rec.bpi").c_str(), RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_NE(mapped, nullptr);
    EXPECT_EQ(dlclose(mapped), 0);
}

TEST_F(PluginFiles, AreBoundLazily) {
    home.AddModule("unresolved.bpi", "unresolved.bpi");
    Start();
    EXPECT_THAT(Listed(), ElementsAre("unresolved.bpi"));
}

TEST_F(PluginFiles, AreEndedAndInitialisedAgainByARestart) {
    AddPlugin("rec.bpi");
    Start();
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"Init", "Exit"}),
                ElementsAre("rec.bpi Init(rec.bpi)", "rec.bpi Exit()", "rec.bpi Init(rec.bpi)"));
}

TEST_F(PluginFiles, AreAllEndedWhateverEachAnswers) {
    AddPlugin("a.bpi", [](ModuleScript& script) { script.exit = [] { return 0x51u; }; });
    AddPlugin("b.bpi", [](ModuleScript& script) {
        script.exit = []() -> unsigned { throw std::runtime_error("refused"); };
    });
    AddPlugin("c.bpi");
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"Exit"}),
                ElementsAre("a.bpi Exit()", "b.bpi Exit()", "c.bpi Exit()"));
}

TEST_F(PluginFiles, HearOnlyTheLastLineOfTheStart) {
    AddPlugin("rec.bpi");
    Start();
    EXPECT_THAT(recorder.Lines({"AlertReceive"}),
                ElementsAre("rec.bpi AlertReceive(" + std::to_string(OAMEVN_ALERT) +
                            ", DllMain, \t\t\t\t\tDONE)"));
}

TEST_F(PluginFiles, AreLoadedWithoutAWordOnTheProcesssOutput) {
    AddPlugin("rec.bpi");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const oam_result started = _oamInit();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(started, OAM_SUCCESS);
}

}  // namespace

}  // namespace oam::test
