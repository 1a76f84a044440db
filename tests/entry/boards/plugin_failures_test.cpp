// What stops the loading of board plug-ins, with which code, and what it leaves behind.
#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "boards.h"
#include "module_log.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PluginFailures : public ServiceTest {
  protected:
    std::string Stage() const { return StageLines(home.Read("oam/log/startup.log"), kPluginStage); }
    std::string Loading(const std::string& file) const {
        return LoadingLine("Plug-in", home.Path("lib/" + file));
    }

    // Two plug-ins; the one that the directory lists first is loaded first.
    void AddTwo() {
        AddPlugin("one.bpi");
        AddPlugin("two.bpi");
        const std::vector<std::string> order = DirectoryOrder(home.Path("lib"));
        ASSERT_EQ(order.size(), 2u);
        first_ = order[0];
        second_ = order[1];
    }

    std::string first_;
    std::string second_;
};

// Paths of a wanted length: the installation as deep as the start-up log's path allows.
class PluginPaths : public PluginFailures {
  protected:
    std::string Add(size_t rootLength, const std::string& file) {
        home.MoveRootToLength(rootLength);
        AddPlugin(file);
        return home.Path("lib/" + file);
    }
};

TEST_F(PluginFailures, StopTheStartWhenAFileIsNoLibrary) {
    home.Write("lib/text.bpi", "not a library");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    EXPECT_EQ(Stage(), Loading("text.bpi") + FailedLine("Plug-in", kCannotLoad));
    EXPECT_FALSE(g_bOamIsRunning);
}

TEST_F(PluginFailures, StopTheStartWhenTheFileIsADirectory) {
    home.MakeDirectory("lib/directory.bpi");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    EXPECT_EQ(Stage(), Loading("directory.bpi") + FailedLine("Plug-in", kCannotLoad));
}

TEST_F(PluginFailures, LeaveOutTheLoadingLineOfAFileWithoutStatus) {
    std::filesystem::create_symlink(home.Path("nowhere"), home.Path("lib/dangling.bpi"));
    EXPECT_EQ(_oamInit(), kCannotLoad);
    EXPECT_EQ(Stage(), FailedLine("Plug-in", kCannotLoad));
}

TEST_F(PluginFailures, StopTheStartWithTheCodeThatInitAnswers) {
    AddPlugin("rec.bpi",
              [](ModuleScript& script) { script.init = [](const char*) { return 0x1234ABCDu; }; });
    EXPECT_EQ(_oamInit(), 0x1234ABCDu);
    EXPECT_EQ(Stage(), Loading("rec.bpi") + FailedLine("Plug-in", 0x1234ABCD));
    EXPECT_THAT(recorder.Lines(), ElementsAre("rec.bpi Init(rec.bpi)", "rec.bpi Exit()"));
}

TEST_F(PluginFailures, StopTheStartWhenInitThrows) {
    AddPlugin("rec.bpi", [](ModuleScript& script) {
        script.init = [](const char*) -> unsigned { throw std::runtime_error("refused"); };
    });
    EXPECT_EQ(_oamInit(), OAM_REASON_FAILED);
    EXPECT_EQ(Stage(), Loading("rec.bpi") + FailedLine("Plug-in", OAM_REASON_FAILED));
}

TEST_F(PluginFailures, EndThePluginsThatWereInitialisedBefore) {
    AddTwo();
    recorder.Script(second_,
                    [](ModuleScript& script) { script.init = [](const char*) { return 0x77u; }; });
    EXPECT_EQ(_oamInit(), 0x77u);
    EXPECT_THAT(recorder.Lines({"Init"}),
                ElementsAre(first_ + " Init(" + first_ + ")", second_ + " Init(" + second_ + ")"));
    EXPECT_THAT(recorder.Lines({"Exit"}), ElementsAre("one.bpi Exit()", "two.bpi Exit()"));
    EXPECT_EQ(Stage(), Loading(first_) + DoneLine("Plug-in", first_) + Loading(second_) +
                           FailedLine("Plug-in", 0x77));
}

TEST_F(PluginFailures, LeaveThePluginsThatWouldFollowAlone) {
    AddTwo();
    recorder.Script(first_,
                    [](ModuleScript& script) { script.init = [](const char*) { return 0x77u; }; });
    EXPECT_EQ(_oamInit(), 0x77u);
    EXPECT_THAT(recorder.Lines(),
                ElementsAre(first_ + " Init(" + first_ + ")", first_ + " Exit()"));
    EXPECT_EQ(Stage(), Loading(first_) + FailedLine("Plug-in", 0x77));
}

TEST_F(PluginFailures, EndNothingInAFileThatWasNeverBound) {
    AddTwo();
    home.Write("lib/" + second_, "not a library");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    EXPECT_THAT(recorder.Lines({"Init", "Exit"}),
                ElementsAre(first_ + " Init(" + first_ + ")", first_ + " Exit()"));
}

TEST_F(PluginFailures, StopTheStartWhenTwoNamesDifferInCaseOnly) {
    AddPlugin("dup.bpi");
    AddPlugin("DUP.BPI");
    const std::vector<std::string> order = DirectoryOrder(home.Path("lib"));
    EXPECT_EQ(_oamInit(), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(Stage(), Loading(order[0]) + DoneLine("Plug-in", order[0]) + Loading(order[1]) +
                           FailedLine("Plug-in", OAMERR_ALREADY_EXISTS));
    EXPECT_THAT(recorder.Lines(),
                ElementsAre(order[0] + " Init(" + order[0] + ")", order[0] + " Exit()"));
}

TEST_F(PluginFailures, LeaveNoPluginBehind) {
    AddPlugin("good.bpi");
    home.Write("lib/text.bpi", "not a library");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    home.Remove("lib/good.bpi");
    home.Remove("lib/text.bpi");
    Start();
    EXPECT_EQ(KeywordOf("Supervisor", "BoardPlugins.Count"), Is("0"));
}

TEST_F(PluginFailures, LetTheNextStartSucceed) {
    AddPlugin("good.bpi");
    home.Write("lib/text.bpi", "not a library");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    home.Remove("lib/text.bpi");
    Start();
    EXPECT_EQ(KeywordOf("Supervisor", "BoardPlugins.Count"), Is("1"));
    EXPECT_EQ(KeywordOf("Supervisor", "BoardPlugins[0]"), Is("good.bpi"));
}

TEST_F(PluginPaths, MayHave127Characters) {
    const std::string file = "a." + std::string(16, 'b') + ".bpi";
    ASSERT_EQ(Add(100, file).size(), 127u);
    EXPECT_EQ(_oamInit(), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"Init"}), ElementsAre(file + " Init(" + file + ")"));
}

TEST_F(PluginPaths, MustStayBelow128Characters) {
    const std::string file = "a." + std::string(17, 'b') + ".bpi";
    ASSERT_EQ(Add(100, file).size(), 128u);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Stage(), Loading(file) + FailedLine("Plug-in", OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

TEST_F(PluginPaths, AreReportedAsFarAsAnAlertsTextGoes) {
    const std::string file = std::string(143, 'n') + ".bpi";
    ASSERT_EQ(Add(107, file).size(), 259u);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    const std::string text = ("=> Loading " + home.Path("lib/" + file)).substr(0, 255);
    EXPECT_EQ(Stage(),
              "Plug-in(I): " + text + "\n" + FailedLine("Plug-in", OAMERR_NOT_ENOUGH_MEMORY));
}

TEST_F(PluginPaths, OfTheListingMustStayBelow260Characters) {
    const std::string file = std::string(144, 'n') + ".bpi";
    ASSERT_EQ(Add(107, file).size(), 260u);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Stage(), FailedLine("Plug-in", OAMERR_NOT_ENOUGH_MEMORY));
}

TEST_F(PluginPaths, MustLeaveRoomForTheObjectsDataFile) {
    const std::string file = std::string(15, 'n') + ".bpi";
    ASSERT_LT(Add(100, file).size(), 128u);
    ASSERT_EQ(home.Path("oam/cfg/" + file).size(), 128u);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    const std::string deleted = LogLine(file, 'I', "");  // the object, which is taken back
    EXPECT_EQ(Stage(), Loading(file) + deleted + FailedLine("Plug-in", OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_THAT(recorder.Lines(), ElementsAre(file + " Exit()"));
}

}  // namespace

}  // namespace oam::test
