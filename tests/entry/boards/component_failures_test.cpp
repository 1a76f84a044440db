// What stops the loading of components, with which code, and what it leaves behind.
#include <filesystem>
#include <stdexcept>

#include "boards.h"
#include "module_log.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ComponentFailures : public ServiceTest {
  protected:
    std::string Stage() const {
        return StageLines(home.Read("oam/log/startup.log"), kComponentStage);
    }
    std::string Loading(const std::string& file) const {
        return LoadingLine("Emc", home.Path("lib/" + file));
    }
    void AddTwo() {
        AddComponent("one.emc");
        AddComponent("two.emc");
        const std::vector<std::string> order = DirectoryOrder(home.Path("lib"));
        ASSERT_EQ(order.size(), 2u);
        first_ = order[0];
        second_ = order[1];
    }

    std::string first_;
    std::string second_;
};

TEST_F(ComponentFailures, StopTheStartWhenAFileIsNoLibrary) {
    home.Write("lib/text.emc", "not a library");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    EXPECT_EQ(Stage(), Loading("text.emc") + FailedLine("Emc", kCannotLoad));
    EXPECT_FALSE(g_bOamIsRunning);
}

TEST_F(ComponentFailures, LeaveOutTheLoadingLineOfAFileWithoutStatus) {
    std::filesystem::create_symlink(home.Path("nowhere"), home.Path("lib/dangling.emc"));
    EXPECT_EQ(_oamInit(), kCannotLoad);
    EXPECT_EQ(Stage(), FailedLine("Emc", kCannotLoad));
}

TEST_F(ComponentFailures, StopTheStartBeforeThePluginsAreLoaded) {
    AddPlugin("rec.bpi");
    home.Write("lib/text.emc", "not a library");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

TEST_F(ComponentFailures, StopTheStartWithTheCodeThatInitAnswers) {
    AddComponent("rec.emc", [](ModuleScript& script) {
        script.init = [](const char*) { return 0x1234ABCDu; };
    });
    EXPECT_EQ(_oamInit(), 0x1234ABCDu);
    EXPECT_EQ(Stage(), Loading("rec.emc") + FailedLine("Emc", 0x1234ABCD));
    EXPECT_THAT(recorder.Lines(), ElementsAre("rec.emc Init(rec.emc)", "rec.emc Exit()"));
}

TEST_F(ComponentFailures, StopTheStartWhenInitThrows) {
    AddComponent("rec.emc", [](ModuleScript& script) {
        script.init = [](const char*) -> unsigned { throw std::runtime_error("refused"); };
    });
    EXPECT_EQ(_oamInit(), OAM_REASON_FAILED);
    EXPECT_EQ(Stage(), Loading("rec.emc") + FailedLine("Emc", OAM_REASON_FAILED));
}

TEST_F(ComponentFailures, EndTheComponentsThatWereInitialisedBefore) {
    AddTwo();
    recorder.Script(second_,
                    [](ModuleScript& script) { script.init = [](const char*) { return 0x77u; }; });
    EXPECT_EQ(_oamInit(), 0x77u);
    EXPECT_THAT(recorder.Lines({"Init"}),
                ElementsAre(first_ + " Init(" + first_ + ")", second_ + " Init(" + second_ + ")"));
    EXPECT_THAT(recorder.Lines({"Exit"}), ElementsAre("one.emc Exit()", "two.emc Exit()"));
    EXPECT_EQ(Stage(), Loading(first_) + DoneLine("Emc", first_) + Loading(second_) +
                           FailedLine("Emc", 0x77));
}

TEST_F(ComponentFailures, LeaveTheComponentsThatWouldFollowAlone) {
    AddTwo();
    recorder.Script(first_,
                    [](ModuleScript& script) { script.init = [](const char*) { return 0x77u; }; });
    EXPECT_EQ(_oamInit(), 0x77u);
    EXPECT_THAT(recorder.Lines(),
                ElementsAre(first_ + " Init(" + first_ + ")", first_ + " Exit()"));
}

TEST_F(ComponentFailures, StopTheStartWhenTwoNamesDifferInCaseOnly) {
    AddComponent("dup.emc");
    AddComponent("DUP.EMC");
    const std::vector<std::string> order = DirectoryOrder(home.Path("lib"));
    EXPECT_EQ(_oamInit(), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(Stage(), Loading(order[0]) + DoneLine("Emc", order[0]) + Loading(order[1]) +
                           FailedLine("Emc", OAMERR_ALREADY_EXISTS));
}

TEST_F(ComponentFailures, LeaveNoComponentBehind) {
    AddComponent("good.emc");
    home.Write("lib/text.emc", "not a library");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    home.Remove("lib/text.emc");
    Start();
    EXPECT_EQ(KeywordOf("Supervisor", "ExtendedManagementComponents.Count"), Is("1"));
}

// Paths of a wanted length: the installation as deep as the start-up log's path allows.
class ComponentPaths : public ComponentFailures {
  protected:
    void Add(size_t rootLength, const std::string& file) {
        home.MoveRootToLength(rootLength);
        AddComponent(file);
        path_ = home.Path("lib/" + file);
    }

    std::string path_;
};

TEST_F(ComponentPaths, MayHave127Characters) {
    Add(100, "a." + std::string(16, 'b') + ".emc");
    ASSERT_EQ(path_.size(), 127u);
    EXPECT_EQ(_oamInit(), OAM_SUCCESS);
    EXPECT_EQ(recorder.Count("Init"), 1u);
}

TEST_F(ComponentPaths, MustStayBelow128Characters) {
    Add(100, "a." + std::string(17, 'b') + ".emc");
    ASSERT_EQ(path_.size(), 128u);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Stage(), LoadingLine("Emc", path_) + FailedLine("Emc", OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

TEST_F(ComponentPaths, OfTheListingMayHave259Characters) {
    Add(107, std::string(143, 'n') + ".emc");
    ASSERT_EQ(path_.size(), 259u);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Stage(), "Emc(I): " + ("=> Loading " + path_).substr(0, 255) + "\n" +
                           FailedLine("Emc", OAMERR_NOT_ENOUGH_MEMORY));
}

TEST_F(ComponentPaths, KeptSilenceWhenTheyReach260Characters) {
    Add(107, std::string(144, 'n') + ".emc");
    ASSERT_EQ(path_.size(), 260u);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Stage(), "");
    EXPECT_FALSE(g_bOamIsRunning);
}

TEST_F(ComponentPaths, MustLeaveRoomForTheObjectsDataFile) {
    const std::string file = std::string(15, 'n') + ".emc";
    Add(100, file);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    const std::string deleted = LogLine(file, 'I', "");  // the object, which is taken back
    EXPECT_EQ(Stage(),
              LoadingLine("Emc", path_) + deleted + FailedLine("Emc", OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(recorder.Count("Init"), 0u);
    EXPECT_EQ(recorder.Count("Exit"), 1u);
}

class ComponentEntry : public ServiceTest, public testing::WithParamInterface<const char*> {};

TEST_P(ComponentEntry, StopsTheStartWhenItIsMissing) {
    home.AddModule(std::string("without_") + GetParam() + ".emc", "rec.emc");
    EXPECT_EQ(_oamInit(), kNoSymbol);
    EXPECT_EQ(StageLines(home.Read("oam/log/startup.log"), kComponentStage),
              LoadingLine("Emc", home.Path("lib/rec.emc")) + FailedLine("Emc", kNoSymbol));
    EXPECT_EQ(recorder.Count("Init"), 0u);
}

// The entries are bound in order, Exit second; a component is ended when its Exit was bound.
TEST_P(ComponentEntry, IsBoundAfterExitWhichIsThenCalled) {
    home.AddModule(std::string("without_") + GetParam() + ".emc", "rec.emc");
    EXPECT_EQ(_oamInit(), kNoSymbol);
    const std::string missing = GetParam();
    EXPECT_EQ(recorder.Count("Exit"), missing == "Init" || missing == "Exit" ? 0u : 1u);
}

INSTANTIATE_TEST_SUITE_P(Of9, ComponentEntry,
                         testing::Values("Init", "Exit", "GetText", "AlertReceive", "OpenObject",
                                         "CloseObject", "SetKeyword", "GetKeyword", "GetQualifier"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace

}  // namespace oam::test
