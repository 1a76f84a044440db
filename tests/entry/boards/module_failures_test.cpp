// What stops the loading of board plug-ins and of components alike, with which code, and what it
// leaves behind.
#include <filesystem>
#include <stdexcept>

#include "boards.h"
#include "module_log.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Kind {
    const char* name;
    const char* extension;
    const char* source;  // of its lines in the start-up log
    int stage;
    const char* count;  // the keyword of the Supervisor
};

constexpr Kind kKinds[] = {
    {"Plugin", ".bpi", "Plug-in", kPluginStage, "BoardPlugins.Count"},
    {"Component", ".emc", "Emc", kComponentStage, "ExtendedManagementComponents.Count"},
};

const auto kBoth = testing::ValuesIn(kKinds);

std::string nameOf(const testing::TestParamInfo<Kind>& row) { return row.param.name; }

class ModuleFailures : public ServiceTest, public testing::WithParamInterface<Kind> {
  protected:
    static std::string File(const std::string& name) { return name + GetParam().extension; }

    std::string Add(const std::string& name, const Recorder::Change& change = {}) {
        const std::string file = File(name);
        if (GetParam().stage == kPluginStage)
            AddPlugin(file, change);
        else
            AddComponent(file, change);
        return file;
    }
    // Two; the one that the directory lists first is loaded first.
    void AddTwo() {
        Add("one");
        Add("two");
        const std::vector<std::string> order = DirectoryOrder(home.Path("lib"));
        ASSERT_EQ(order.size(), 2u);
        first_ = order[0];
        second_ = order[1];
    }

    std::string Stage() const {
        return StageLines(home.Read("oam/log/startup.log"), GetParam().stage);
    }
    std::string Loading(const std::string& file) const {
        return LoadingLine(GetParam().source, home.Path("lib/" + file));
    }
    static std::string Done(const std::string& file) { return DoneLine(GetParam().source, file); }
    static std::string Failed(unsigned code) { return FailedLine(GetParam().source, code); }

    static std::string InitOf(const std::string& file) { return file + " Init(" + file + ")"; }
    static std::string ExitOf(const std::string& file) { return file + " Exit()"; }

    std::string first_;
    std::string second_;
};

INSTANTIATE_TEST_SUITE_P(Of, ModuleFailures, kBoth, nameOf);

TEST_P(ModuleFailures, StopTheStartWhenAFileIsNoLibrary) {
    home.Write("lib/" + File("text"), "not a library");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    EXPECT_EQ(Stage(), Loading(File("text")) + Failed(kCannotLoad));
    EXPECT_FALSE(g_bOamIsRunning);
}

TEST_P(ModuleFailures, StopTheStartWhenTheFileIsADirectory) {
    home.MakeDirectory("lib/" + File("directory"));
    EXPECT_EQ(_oamInit(), kCannotLoad);
    EXPECT_EQ(Stage(), Loading(File("directory")) + Failed(kCannotLoad));
}

TEST_P(ModuleFailures, LeaveOutTheLoadingLineOfAFileWithoutStatus) {
    std::filesystem::create_symlink(home.Path("nowhere"), home.Path("lib/" + File("dangling")));
    EXPECT_EQ(_oamInit(), kCannotLoad);
    EXPECT_EQ(Stage(), Failed(kCannotLoad));
}

TEST_P(ModuleFailures, StopTheStartWithTheCodeThatInitAnswers) {
    const std::string file = Add(
        "rec", [](ModuleScript& script) { script.init = [](const char*) { return 0x1234ABCDu; }; });
    EXPECT_EQ(_oamInit(), 0x1234ABCDu);
    EXPECT_EQ(Stage(), Loading(file) + Failed(0x1234ABCD));
    EXPECT_THAT(recorder.Lines(), ElementsAre(InitOf(file), ExitOf(file)));
}

TEST_P(ModuleFailures, StopTheStartWhenInitThrows) {
    const std::string file = Add("rec", [](ModuleScript& script) {
        script.init = [](const char*) -> unsigned { throw std::runtime_error("refused"); };
    });
    EXPECT_EQ(_oamInit(), OAM_REASON_FAILED);
    EXPECT_EQ(Stage(), Loading(file) + Failed(OAM_REASON_FAILED));
}

TEST_P(ModuleFailures, EndTheModulesThatWereInitialisedBefore) {
    AddTwo();
    recorder.Script(second_,
                    [](ModuleScript& script) { script.init = [](const char*) { return 0x77u; }; });
    EXPECT_EQ(_oamInit(), 0x77u);
    EXPECT_THAT(recorder.Lines({"Init"}), ElementsAre(InitOf(first_), InitOf(second_)));
    EXPECT_THAT(recorder.Lines({"Exit"}), ElementsAre(ExitOf(File("one")), ExitOf(File("two"))));
    EXPECT_EQ(Stage(), Loading(first_) + Done(first_) + Loading(second_) + Failed(0x77));
}

TEST_P(ModuleFailures, LeaveTheModulesThatWouldFollowAlone) {
    AddTwo();
    recorder.Script(first_,
                    [](ModuleScript& script) { script.init = [](const char*) { return 0x77u; }; });
    EXPECT_EQ(_oamInit(), 0x77u);
    EXPECT_THAT(recorder.Lines(), ElementsAre(InitOf(first_), ExitOf(first_)));
    EXPECT_EQ(Stage(), Loading(first_) + Failed(0x77));
}

TEST_P(ModuleFailures, EndNothingInAFileThatWasNeverBound) {
    AddTwo();
    home.Write("lib/" + second_, "not a library");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    EXPECT_THAT(recorder.Lines({"Init", "Exit"}), ElementsAre(InitOf(first_), ExitOf(first_)));
}

TEST_P(ModuleFailures, StopTheStartWhenTwoNamesDifferInCaseOnly) {
    const std::string upper = GetParam().stage == kPluginStage ? "DUP.BPI" : "DUP.EMC";
    Add("dup");
    if (GetParam().stage == kPluginStage)
        AddPlugin(upper);
    else
        AddComponent(upper);
    const std::vector<std::string> order = DirectoryOrder(home.Path("lib"));
    EXPECT_EQ(_oamInit(), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(Stage(), Loading(order[0]) + Done(order[0]) + Loading(order[1]) +
                           Failed(OAMERR_ALREADY_EXISTS));
    EXPECT_THAT(recorder.Lines(), ElementsAre(InitOf(order[0]), ExitOf(order[0])));
}

TEST_P(ModuleFailures, LeaveNothingBehind) {
    const std::string file = Add("good");
    home.Write("lib/" + File("text"), "not a library");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    home.Remove("lib/" + file);
    home.Remove("lib/" + File("text"));
    Start();
    EXPECT_EQ(KeywordOf("Supervisor", GetParam().count), Is("0"));
}

TEST_P(ModuleFailures, LetTheNextStartSucceed) {
    Add("good");
    home.Write("lib/" + File("text"), "not a library");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    home.Remove("lib/" + File("text"));
    Start();
    EXPECT_EQ(KeywordOf("Supervisor", GetParam().count), Is("1"));
}

// Paths of a wanted length: the installation as deep as the start-up log's path allows.
class ModulePaths : public ModuleFailures {
  protected:
    void AddIn(std::size_t rootLength, const std::string& name) {
        home.MoveRootToLength(rootLength);
        file_ = Add(name);
        path_ = home.Path("lib/" + file_);
    }

    std::string file_;
    std::string path_;
};

INSTANTIATE_TEST_SUITE_P(Of, ModulePaths, kBoth, nameOf);

TEST_P(ModulePaths, MayHave127Characters) {
    AddIn(100, "a." + std::string(16, 'b'));
    ASSERT_EQ(path_.size(), 127u);
    EXPECT_EQ(_oamInit(), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"Init"}), ElementsAre(InitOf(file_)));
}

TEST_P(ModulePaths, MustStayBelow128Characters) {
    AddIn(100, "a." + std::string(17, 'b'));
    ASSERT_EQ(path_.size(), 128u);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Stage(), Loading(file_) + Failed(OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

TEST_P(ModulePaths, AreReportedAsFarAsAnAlertsTextGoes) {
    AddIn(107, std::string(143, 'n'));
    ASSERT_EQ(path_.size(), 259u);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    const std::string text = ("=> Loading " + path_).substr(0, 255);
    EXPECT_EQ(Stage(), std::string(GetParam().source) + "(I): " + text + "\n" +
                           Failed(OAMERR_NOT_ENOUGH_MEMORY));
}

// What the listing cannot hold stops the start: the plug-ins' loader says so, the components' says
// nothing.
TEST_P(ModulePaths, OfTheListingMustStayBelow260Characters) {
    AddIn(107, std::string(144, 'n'));
    ASSERT_EQ(path_.size(), 260u);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Stage(), GetParam().stage == kPluginStage ? Failed(OAMERR_NOT_ENOUGH_MEMORY) : "");
    EXPECT_FALSE(g_bOamIsRunning);
}

TEST_P(ModulePaths, MustLeaveRoomForTheObjectsDataFile) {
    AddIn(100, std::string(15, 'n'));
    ASSERT_LT(path_.size(), 128u);
    ASSERT_EQ(home.Path("oam/cfg/" + file_).size(), 128u);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    const std::string deleted = LogLine(file_, 'I', "");  // the object, which is taken back
    EXPECT_EQ(Stage(), Loading(file_) + deleted + Failed(OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_THAT(recorder.Lines(), ElementsAre(ExitOf(file_)));
}

}  // namespace

}  // namespace oam::test
