// Which files of the library directory are loaded as components, in which order, and what the
// start-up log tells of them.
#include <dlfcn.h>

#include <stdexcept>

#include "boards.h"
#include "module_log.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ComponentFiles : public ServiceTest {
  protected:
    std::string StageOfComponents() const {
        return StageLines(home.Read("oam/log/startup.log"), kComponentStage);
    }
    std::vector<std::string> Listed() const {
        std::vector<std::string> names;
        for (int index = 0;; ++index) {
            const Answer name = KeywordOf(
                "Supervisor", "ExtendedManagementComponents[" + std::to_string(index) + "]");
            if (name.code != OAM_SUCCESS) break;
            names.push_back(name.text);
        }
        EXPECT_EQ(KeywordOf("Supervisor", "ExtendedManagementComponents.Count"),
                  Is(std::to_string(names.size())));
        return names;
    }
};

TEST_F(ComponentFiles, AreLoadedInitialisedAndReportedOnTheStartUpLog) {
    AddComponent("rec.emc");
    Start();
    EXPECT_EQ(StageOfComponents(),
              LoadingLine("Emc", home.Path("lib/rec.emc")) + DoneLine("Emc", "rec.emc"));
    EXPECT_THAT(recorder.Lines({"Init", "Exit"}), ElementsAre("rec.emc Init(rec.emc)"));
    EXPECT_THAT(Listed(), ElementsAre("rec.emc"));
}

TEST_F(ComponentFiles, MayBeMissingTogetherWithTheirDirectory) {
    home.Remove("lib");
    Start();
    EXPECT_EQ(StageOfComponents(), "");
    EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(ComponentFiles, MayBeMissingInTheDirectory) {
    home.Write("lib/readme.txt", "nothing to load");
    Start();
    EXPECT_EQ(StageOfComponents(), "");
    EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(ComponentFiles, AreKnownByTheirLastExtensionInAnyCase) {
    AddComponent("X.EMC");
    for (const char* other : {"x.emc.bak", "x.em", "xemc", "x.emcx", "emc", "x.so"}) {
        home.Write(std::string("lib/") + other, "not to be loaded");
    }
    Start();
    EXPECT_THAT(Listed(), ElementsAre("X.EMC"));
}

TEST_F(ComponentFiles, AreListedByNameWithoutRegardToCase) {
    for (const char* file : {"B.emc", "a.EMC", "c.emc"}) AddComponent(file);
    Start();
    EXPECT_THAT(Listed(), ElementsAre("a.EMC", "B.emc", "c.emc"));
}

TEST_F(ComponentFiles, AreInitialisedInTheDirectorysOrderAndEndedInThatOfTheirNames) {
    for (const char* file : {"d.emc", "B.emc", "a.EMC", "C.EMC"}) AddComponent(file);
    Start();
    std::vector<std::string> initialised;
    std::string lines;
    for (const std::string& file : DirectoryOrder(home.Path("lib"))) {
        initialised.push_back(file + " Init(" + file + ")");
        lines += LoadingLine("Emc", home.Path("lib/" + file)) + DoneLine("Emc", file);
    }
    EXPECT_EQ(recorder.Lines({"Init"}), initialised);
    EXPECT_EQ(StageOfComponents(), lines);
    recorder.Clear();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"Init", "Exit"}),
                ElementsAre("a.EMC Exit()", "B.emc Exit()", "C.EMC Exit()", "d.emc Exit()"));
}

TEST_F(ComponentFiles, MayBeMoreThanOneGrowthStep) {
    std::vector<std::string> expected;
    for (int i = 39; i >= 10; --i) AddComponent("c" + std::to_string(i) + ".emc");
    for (int i = 10; i <= 39; ++i) expected.push_back("c" + std::to_string(i) + ".emc");
    Start();
    EXPECT_EQ(Listed(), expected);
}

TEST_F(ComponentFiles, GetAnObjectWithItsDataFile) {
    AddComponent("rec.emc");
    Start();
    EXPECT_THAT(Objects(), ElementsAre("rec.emc", "Supervisor"));
    EXPECT_EQ(home.ReadDataFile("rec.xmo"), DataFile("rec.emc", StandardEntries("rec.emc")));
}

TEST_F(ComponentFiles, KeptDataFileNameEndsAtTheFirstDot) {
    AddComponent("a.b.emc");
    Start();
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo", "a.xmo"));
}

TEST_F(ComponentFiles, KeepTheObjectOfAnEarlierRun) {
    AddComponent("rec.emc");
    Start();
    EXPECT_EQ(DbChange("rec.emc", "Remark", "kept"), OAM_SUCCESS);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"Init", "Exit"}),
                ElementsAre("rec.emc Init(rec.emc)", "rec.emc Exit()", "rec.emc Init(rec.emc)"));
    EXPECT_EQ(StoredKeywordOf("rec.emc", "Remark"), Is("kept"));
    EXPECT_THAT(Listed(), ElementsAre("rec.emc"));
}

TEST_F(ComponentFiles, StayMappedAfterTheServiceEnded) {
    AddComponent("rec.emc");
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    void* mapped = dlopen(home.Path("lib/rec.emc").c_str(), RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_NE(mapped, nullptr);
    EXPECT_EQ(dlclose(mapped), 0);
}

TEST_F(ComponentFiles, AreAllEndedWhateverEachAnswers) {
    AddComponent("a.emc", [](ModuleScript& script) { script.exit = [] { return 0x51u; }; });
    AddComponent("b.emc", [](ModuleScript& script) {
        script.exit = []() -> unsigned { throw std::runtime_error("refused"); };
    });
    AddComponent("c.emc");
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"Exit"}),
                ElementsAre("a.emc Exit()", "b.emc Exit()", "c.emc Exit()"));
}

TEST_F(ComponentFiles, ComeBeforeThePluginsAndEndAfterThem) {
    AddComponent("z.emc");
    AddPlugin("a.bpi");
    Start();
    EXPECT_THAT(recorder.Lines({"Init"}), ElementsAre("z.emc Init(z.emc)", "a.bpi Init(a.bpi)"));
    recorder.Clear();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"Exit"}), ElementsAre("a.bpi Exit()", "z.emc Exit()"));
}

}  // namespace

}  // namespace oam::test
