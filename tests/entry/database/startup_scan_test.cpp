// The scan of the configuration directory at the start.
#include <filesystem>

#include "support/log_text.h"
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class StartupScan : public ServiceTest {
  protected:
    void WriteThing(const std::string& file, const std::string& name) {
        home.WriteDataFile(file, DataFile(name, {{"Name", name}}));
    }

    std::string LoadingLine(const std::string& file) {
        return LogLine("Config", 'I', LoadingText(home.Path("oam/cfg/" + file)));
    }
    static std::string Rejecting(const std::string& file, const std::string& saved) {
        return "Rejecting invalid object data file \"" + file + "\", saving to \"" + saved + "\".";
    }
    std::string Log() { return WithoutStamps(home.Read("oam/log/startup.log")); }
};

TEST_F(StartupScan, EmptyDirectoryYieldsTheSupervisorAlone) {
    Start();
    EXPECT_THAT(Objects(), ElementsAre("Supervisor"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo"));
    EXPECT_EQ(home.ReadDataFile("Super.xmo"), DataFile("Supervisor", SupervisorEntries()));
}

TEST_F(StartupScan, NoDataFileLeavesNoLine) {
    home.Write("oam/cfg/notes.txt", "nothing of ours");
    Start();
    EXPECT_EQ(Log(), StartupLog());
    EXPECT_EQ(home.Read("oam/cfg/notes.txt"), "nothing of ours");
}

TEST_F(StartupScan, SupervisorIsMadeBesideOtherObjects) {
    WriteThing("Obj0.xmo", "Thing");
    Start();
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", "Thing"));
    EXPECT_EQ(home.ReadDataFile("Super.xmo"), DataFile("Supervisor", SupervisorEntries()));
}

TEST_F(StartupScan, EachFileIsAnnouncedAndConfirmed) {
    WriteThing("Obj0.xmo", "Thing");
    const std::string loading = LoadingText(home.Path("oam/cfg/Obj0.xmo"));
    Start();
    EXPECT_EQ(Log(), StartupLog(LogLine("Config", 'I', loading) +
                                LogLine("Config", 'I', "Obj0.xmo DONE")));
    EXPECT_THAT(alerts.HeardFrom("Config"),
                ElementsAre(Said{OAMEVN_ALERT, 0, "Config", loading},
                            Said{OAMEVN_ALERT, 0, "Config", "Obj0.xmo DONE"}));
}

TEST_F(StartupScan, OnlyTheLastExtensionCountsInAnyCase) {
    WriteThing("a.XMO", "A");
    WriteThing("b.bak.xMo", "B");
    WriteThing("c.xmo.bak", "C");
    WriteThing("d.xmo~", "D");
    WriteThing("xmo", "E");
    WriteThing("f.xmobak", "F");
    Start();
    EXPECT_THAT(Objects(), ElementsAre("A", "B", "Supervisor"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo", "a.XMO", "b.bak.xMo", "c.xmo.bak",
                                                  "d.xmo~", "f.xmobak", "xmo"));
}

TEST_F(StartupScan, InvalidFileIsSetAsideAndTheStartGoesOn) {
    home.WriteDataFile("Obj0.xmo", "nonsense");
    WriteThing("Obj1.xmo", "Thing");
    home.WriteDataFile("Obj0.bak", "of an earlier rejection");
    Start();
    EXPECT_EQ(home.ReadDataFile("Obj0.bak"), "nonsense");
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.bak", "Obj1.xmo", "Super.xmo"));
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", "Thing"));
    EXPECT_THAT(
        alerts.HeardFrom("Supervisor"),
        ElementsAre(Said{OAMEVN_ALERT, 2, "Supervisor", Rejecting("Obj0.xmo", "Obj0.bak")}));
}

TEST_F(StartupScan, FileInvalidAtItsFirstKeywordIsLoggedAsRejected) {
    home.WriteDataFile("Obj0.xmo", "nonsense");
    const std::string loading = LoadingLine("Obj0.xmo");
    Start();
    EXPECT_EQ(Log(),
              StartupLog(loading + LogLine("Supervisor", 'E', Rejecting("Obj0.xmo", "Obj0.bak"))));
}

TEST_F(StartupScan, FileInvalidLaterIsRejectedAndItsObjectRemoved) {
    home.WriteDataFile("Obj0.xmo", DataFile("Thing", {{"Name", "Thing"}}) + "rest");
    const std::string bytes = home.ReadDataFile("Obj0.xmo");
    const std::string loading = LoadingLine("Obj0.xmo");
    Start();
    EXPECT_EQ(Log(),
              StartupLog(loading + LogLine("Supervisor", 'E', Rejecting("Obj0.xmo", "Obj0.bak")) +
                         LogLine("Thing", 'I', "")));
    EXPECT_EQ(home.ReadDataFile("Obj0.bak"), bytes);
    EXPECT_THAT(Objects(), ElementsAre("Supervisor"));
    EXPECT_THAT(alerts.HeardFrom("Thing"), ElementsAre(Said{OAMEVN_DELETED, 0, "Thing", ""}));
}

TEST_F(StartupScan, RejectedNameKeepsItsEarlierDots) {
    home.WriteDataFile("a.b.XMO", "nonsense");
    Start();
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo", "a.b.bak"));
    EXPECT_THAT(alerts.HeardFrom("Supervisor"),
                ElementsAre(Said{OAMEVN_ALERT, 2, "Supervisor", Rejecting("a.b.XMO", "a.b.bak")}));
}

TEST_F(StartupScan, SecondFileOfAnObjectIsRejected) {
    WriteThing("One.xmo", "Thing");
    WriteThing("Two.xmo", "THING");
    Start();
    // The directory's own order says which one is second.
    const bool oneRejected = home.Exists("oam/cfg/One.bak");
    const std::string rejected = oneRejected ? "One" : "Two";
    const std::string kept = oneRejected ? "Two" : "One";
    EXPECT_TRUE(home.Exists("oam/cfg/" + rejected + ".bak"));
    EXPECT_FALSE(home.Exists("oam/cfg/" + rejected + ".xmo"));
    EXPECT_TRUE(home.Exists("oam/cfg/" + kept + ".xmo"));
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", oneRejected ? "THING" : "Thing"));
    EXPECT_THAT(alerts.HeardFrom("Supervisor"),
                ElementsAre(Said{OAMEVN_ALERT, 2, "Supervisor",
                                 Rejecting(rejected + ".xmo", rejected + ".bak")}));
    EXPECT_THAT(alerts.Heard(OAMEVN_DELETED), IsEmpty()) << "nothing had been made of it";
    EXPECT_THAT(alerts.HeardFrom("Config"),
                Not(Contains(Said{OAMEVN_ALERT, 0, "Config", rejected + ".xmo DONE"})));
}

TEST_F(StartupScan, InvalidSupervisorIsReplacedByAFreshOne) {
    home.WriteDataFile("Super.xmo", "nonsense");
    Start();
    EXPECT_EQ(home.ReadDataFile("Super.bak"), "nonsense");
    EXPECT_EQ(home.ReadDataFile("Super.xmo"), DataFile("Supervisor", SupervisorEntries()));
}

TEST_F(StartupScan, SupervisorsFileMustSpellItsNameExactly) {
    home.WriteDataFile("Super.xmo",
                       DataFile("supervisor", With(SupervisorEntries(), "Name", "supervisor")));
    Start();
    EXPECT_TRUE(home.Exists("oam/cfg/Super.bak"));
    EXPECT_EQ(home.ReadDataFile("Super.xmo"), DataFile("Supervisor", SupervisorEntries()));
    EXPECT_THAT(Objects(), ElementsAre("Supervisor"));
}

TEST_F(StartupScan, SupervisorsNameKeywordIsMended) {
    home.WriteDataFile("Super.xmo",
                       DataFile("Supervisor", {{"Custom", "kept"}, {"Name", "Other"}}));
    Start();
    EXPECT_THAT(Objects(), ElementsAre("Supervisor"));
    EXPECT_EQ(StoredKeywordOf("Supervisor", "Name"), Is("Supervisor"));
    EXPECT_EQ(StoredKeywordOf("Supervisor", "Custom"), Is("kept"));
}

TEST_F(StartupScan, FileThatCannotBeOpenedStopsTheStartAndTouchesNoFile) {
    WriteThing("Obj0.xmo", "Thing");
    std::filesystem::create_symlink("nowhere", home.Path("oam/cfg/Lost.xmo"));
    const std::string bytes = home.ReadDataFile("Obj0.xmo");
    EXPECT_EQ(_oamInit(), OAMERR_FILE_READ_ERROR);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), bytes);
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Lost.xmo", "Obj0.xmo"));
    EXPECT_THAT(alerts.Heard(OAMEVN_DELETED), IsEmpty());
}

TEST_F(StartupScan, DirectoryWithTheExtensionIsRejectedLikeAnInvalidFile) {
    home.MakeDirectory("oam/cfg/Odd.xmo");
    Start();
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Odd.bak", "Super.xmo"));
    EXPECT_THAT(Objects(), ElementsAre("Supervisor"));
}

TEST_F(StartupScan, PathOf127CharactersIsTheLongest) {
    home.MoveRootToLength(107);
    const std::string longest(127 - home.Path("oam/cfg/").size() - 4, 'x');
    WriteThing(longest + ".xmo", "Thing");
    Start();
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", "Thing"));
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    WriteThing(longest + "x.xmo", "Another");
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_TRUE(home.Exists("oam/cfg/" + longest + "x.xmo"));
}

TEST_F(StartupScan, PathOfAModulesDataFileHasTheSameLimit) {
    home.MoveRootToLength(107);
    const std::string longest(127 - home.Path("oam/cfg/").size() - 4, 'x');
    AddPlugin(longest + ".bpi");
    Start();
    EXPECT_TRUE(home.Exists("oam/cfg/" + longest + ".xmo"));
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    AddPlugin(longest + "x.bpi");
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_THAT(Log(), ::testing::HasSubstr(LogLine("Plug-in", 'E', "!! FAILED !! (0x40000003)")));
}

TEST_F(StartupScan, KeptStartGoesOnWithoutAnyObjectWhenTheDirectoryCannotBeOpened) {
    home.Remove("oam/cfg");
    home.Write("oam/cfg", "in the way");
    Start();
    EXPECT_THAT(Objects(), IsEmpty());
    unsigned long handle = 0;
    EXPECT_EQ(_oamOpenObject(kClient, "Supervisor", &handle, kRead), OAMERR_NOT_FOUND);
    EXPECT_EQ(Log(), StartupLog());
    EXPECT_EQ(home.Read("oam/cfg"), "in the way");
}

TEST_F(StartupScan, NamesWithFormatMarksAreTextsLikeAllOthers) {
    home.WriteDataFile("50%s%n.xmo", "nonsense");
    WriteThing("60%d.xmo", "Thing%s");
    Start();
    EXPECT_THAT(
        alerts.HeardFrom("Supervisor"),
        ElementsAre(Said{OAMEVN_ALERT, 2, "Supervisor", Rejecting("50%s%n.xmo", "50%s%n.bak")}));
    EXPECT_THAT(alerts.HeardFrom("Config"),
                Contains(Said{OAMEVN_ALERT, 0, "Config", "60%d.xmo DONE"}));
}

TEST_F(StartupScan, ObjectsOfAnEarlierRunComeBack) {
    AddPluginFor("x.bpi", {"Prod"}, {{"Location.PCI.Bus", "5"}});
    Start();
    CreateBoard("Prod");
    EXPECT_EQ(Change("Prod 0", "Name", "Mine"), OAM_SUCCESS);
    const std::string board = home.ReadDataFile("Obj0.xmo");
    const std::string plugin = home.ReadDataFile("x.xmo");
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("Mine", "Supervisor", "x.bpi"));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), board);
    EXPECT_EQ(home.ReadDataFile("x.xmo"), plugin);
    EXPECT_EQ(KeywordOf("Mine", "Location.PCI.Bus"), Is("5"));
}

}  // namespace
}  // namespace oam::test
