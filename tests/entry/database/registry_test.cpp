// Objects by name, class and data file; how they come and go.
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Registry : public ServiceTest {
  protected:
    void WriteThing(const std::string& file, const std::string& name) {
        home.WriteDataFile(file, DataFile(name, {{"Name", name}}));
    }
};

TEST_F(Registry, EnumerationIsSortedWithoutRegardToCase) {
    for (const char* name : {"beta", "Alpha", "_x", "Zed", "alpha 2"}) {
        WriteThing(std::string(name) + ".xmo", name);
    }
    Start();
    EXPECT_THAT(Objects(), ElementsAre("_x", "Alpha", "alpha 2", "beta", "Supervisor", "Zed"));
}

TEST_F(Registry, EnumerationHasBothEnds) {
    Start();
    char buffer[16] = "mine";
    EXPECT_EQ(_oamDbEnumObjects(-1, buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamDbEnumObjects(1, buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamDbEnumObjects(0, buffer, 10), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "mine");
    EXPECT_EQ(_oamDbEnumObjects(0, buffer, 11), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "Supervisor");
}

TEST_F(Registry, BoardsOfAProductAreNumberedFromZeroAndGapsAreFilled) {
    AddPluginFor("x.bpi", {"Board"});
    Start();
    EXPECT_EQ(CreateBoard("Board"), "Board 0");
    EXPECT_EQ(CreateBoard("Board"), "Board 1");
    EXPECT_EQ(CreateBoard("Board"), "Board 2");
    EXPECT_EQ(_oamDeleteBoard("Board 1"), OAM_SUCCESS);
    EXPECT_EQ(CreateBoard("Board"), "Board 1");
    EXPECT_EQ(Change("Board 0", "Name", "Elsewhere"), OAM_SUCCESS);
    EXPECT_EQ(CreateBoard("Board"), "Board 0");
}

TEST_F(Registry, NameTakenInAnotherCaseIsPassedOver) {
    AddPluginFor("x.bpi", {"Board"});
    WriteThing("Thing.xmo", "BOARD 0");
    Start();
    EXPECT_EQ(CreateBoard("Board"), "Board 1");
}

TEST_F(Registry, DataFilesTakeTheLowestFreeNumber) {
    AddPluginFor("x.bpi", {"Board"});
    WriteThing("Obj0.xmo", "First");
    WriteThing("Obj2.xmo", "Second");
    Start();
    CreateBoard("Board");
    EXPECT_TRUE(home.Exists("oam/cfg/Obj1.xmo"));
    CreateBoard("Board");
    EXPECT_TRUE(home.Exists("oam/cfg/Obj3.xmo"));
    EXPECT_EQ(_oamDeleteBoard("First"), OAM_SUCCESS);
    EXPECT_FALSE(home.Exists("oam/cfg/Obj0.xmo"));
    CreateBoard("Board");
    EXPECT_TRUE(home.Exists("oam/cfg/Obj0.xmo"));
}

TEST_F(Registry, DataFilesOfOtherFormsAndHighNumbersTakeNoNumber) {
    AddPluginFor("x.bpi", {"Board"});
    WriteThing("Thing.xmo", "First");
    WriteThing("Obj99.xmo", "Second");
    WriteThing("MyObj0.xmo", "Third");
    Start();
    CreateBoard("Board");
    EXPECT_TRUE(home.Exists("oam/cfg/Obj0.xmo"));
}

TEST_F(Registry, ObjectKeepsTheFileThatItCameFrom) {
    WriteThing("Any Name.XMO", "Thing");
    Start();
    EXPECT_EQ(DbChange("Thing", "Key", "value"), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Any Name.XMO"),
              DataFile("Thing", {{"Key", "value"}, {"Name", "Thing"}}));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Any Name.XMO", "Super.xmo"));
}

TEST_F(Registry, StaleFileOfANewObjectIsReplaced) {
    AddPluginFor("x.bpi", {"Board"});
    Start();
    home.WriteDataFile("Obj0.xmo", DataFile("Board 0", {{"Name", "Board 0"}, {"Stale", "yes"}}));
    CreateBoard("Board");
    EXPECT_EQ(StoredKeywordOf("Board 0", "Stale"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Registry, ClassFollowsTheLastExtensionOfTheName) {
    AddPluginFor("x.bpi", {"Board"});
    // Nothing loaded serves these; all boards go when all boards are deleted.
    WriteThing("a.xmo", "a.BPI");
    WriteThing("b.xmo", "b.emc");
    WriteThing("c.xmo", "c.bp");
    WriteThing("d.xmo", "d.bpi.old");
    WriteThing("e.xmo", "e");
    Start();
    EXPECT_THAT(Objects(),
                ElementsAre("a.BPI", "b.emc", "c.bp", "d.bpi.old", "e", "Supervisor", "x.bpi"));
    EXPECT_EQ(_oamDeleteBoard(nullptr), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("a.BPI", "b.emc", "Supervisor", "x.bpi"));
}

TEST_F(Registry, KeptFileOfAModulesObjectIsNamedUpToTheFirstDot) {
    AddPlugin("card1.BPI");
    AddComponent("a.b.emc");
    Start();
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo", "a.xmo", "card1.xmo"));
    EXPECT_EQ(home.ReadDataFile("card1.xmo"), DataFile("card1.BPI", StandardEntries("card1.BPI")));
    EXPECT_EQ(home.ReadDataFile("a.xmo"), DataFile("a.b.emc", StandardEntries("a.b.emc")));
}

TEST_F(Registry, KeptModulesWithTheSameFirstPartShareOneFileAndFailTheStart) {
    AddComponent("same.emc");
    AddPlugin("same.bpi");
    EXPECT_EQ(_oamInit(), OAMERR_FILE_READ_ERROR) << "the component's object finds the plug-in's";
}

TEST_F(Registry, DeletedObjectTakesItsFileAndTellsSo) {
    WriteThing("Thing.xmo", "Thing");
    Start();
    alerts.Clear();
    EXPECT_EQ(_oamDeleteBoard("THING"), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_DELETED, 0, "Thing", ""}));
    EXPECT_THAT(Objects(), ElementsAre("Supervisor"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo"));
    EXPECT_EQ(_oamDeleteBoard("Thing"), OAMERR_NOT_FOUND);
}

TEST_F(Registry, ObjectWithoutAFileIsDeletedToo) {
    WriteThing("Thing.xmo", "Thing");
    Start();
    home.Remove("oam/cfg/Thing.xmo");
    EXPECT_EQ(_oamDeleteBoard("Thing"), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("Supervisor"));
}

TEST_F(Registry, EveryObjectCanBeDeletedByItsName) {
    AddPlugin("x.bpi");
    Start();
    alerts.Clear();
    EXPECT_EQ(_oamDeleteBoard("x.bpi"), OAM_SUCCESS);
    EXPECT_EQ(_oamDeleteBoard("supervisor"), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_DELETED, 0, "x.bpi", ""},
                                            Said{OAMEVN_DELETED, 0, "Supervisor", ""}));
    EXPECT_THAT(Objects(), IsEmpty());
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
    EXPECT_THAT(recorder.Lines({"DestroyBoard"}), IsEmpty());
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", "x.bpi"));
}

TEST_F(Registry, UnknownObjectCannotBeDeleted) {
    Start();
    alerts.Clear();
    EXPECT_EQ(_oamDeleteBoard("Nobody"), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamDeleteBoard(""), OAMERR_NOT_FOUND);
    EXPECT_THAT(alerts.All(), IsEmpty());
}

TEST_F(Registry, OpenObjectCannotBeDeleted) {
    WriteThing("Thing.xmo", "Thing");
    Start();
    alerts.Clear();
    for (unsigned mode : {kRead, kProvider}) {
        const unsigned long handle = DbOpen("Thing", mode);
        EXPECT_EQ(_oamDeleteBoard("Thing"), OAMERR_ACCESS_DENIED);
        EXPECT_EQ(DbGetKeyword(handle, "Name"), Is("Thing"));
        EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    }
    EXPECT_TRUE(home.Exists("oam/cfg/Thing.xmo"));
    EXPECT_THAT(alerts.Heard(OAMEVN_DELETED), IsEmpty());
}

TEST_F(Registry, DeletionThatThePluginRefusesKeepsTheBoard) {
    AddPluginFor("x.bpi", {"Board"});
    Start();
    CreateBoard("Board");
    recorder.Script("x.bpi", [](ModuleScript& script) {
        script.destroyBoard = [](const char*) { return 0x99u; };
    });
    alerts.Clear();
    EXPECT_EQ(_oamDeleteBoard("Board 0"), 0x99u);
    EXPECT_THAT(Objects(), ElementsAre("Board 0", "Supervisor", "x.bpi"));
    EXPECT_TRUE(home.Exists("oam/cfg/Obj0.xmo"));
    EXPECT_THAT(alerts.All(), IsEmpty());
    EXPECT_EQ(KeywordOf("Board 0", "Name"), Is("Board 0"));
}

TEST_F(Registry, DeletionOfAllBoardsKeepsEverythingElse) {
    AddPluginFor("x.bpi", {"Board"});
    AddComponent("c.emc");
    Start();
    for (int i = 0; i < 20; ++i) CreateBoard("Board");
    EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(_oamDeleteBoard(nullptr), OAM_SUCCESS);
    EXPECT_EQ(alerts.Heard(OAMEVN_DELETED).size(), 20u);
    EXPECT_THAT(Objects(), ElementsAre("c.emc", "Supervisor", "x.bpi"));
    EXPECT_EQ(_oamDeleteBoard(nullptr), OAM_SUCCESS) << "none is left";
    EXPECT_EQ(KeywordOf("Supervisor", "AutoStopEnabled"), Is("Yes"));
}

TEST_F(Registry, DeletionOfAllBoardsStopsAtTheFirstFailure) {
    AddPluginFor("x.bpi", {"Board"});
    Start();
    for (int i = 0; i < 4; ++i) CreateBoard("Board");
    recorder.Script("x.bpi", [](ModuleScript& script) {
        script.destroyBoard = [](const char* board) {
            return std::string(board) == "Board 1" ? 0x99u : 0u;
        };
    });
    EXPECT_EQ(_oamDeleteBoard(nullptr), 0x99u);
    EXPECT_THAT(Objects(), ElementsAre("Board 1", "Board 2", "Board 3", "Supervisor", "x.bpi"));
}

TEST_F(Registry, DeletionOfAllBoardsStopsAtAnOpenBoard) {
    for (const char* name : {"One", "Pair", "Queue"}) WriteThing(std::string(name) + ".xmo", name);
    Start();
    const unsigned long handle = DbOpen("Pair");
    EXPECT_EQ(_oamDeleteBoard(nullptr), OAMERR_ACCESS_DENIED);
    EXPECT_THAT(Objects(), ElementsAre("Pair", "Queue", "Supervisor"));
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
}

TEST_F(Registry, ManyObjectsComeAndGo) {
    AddPluginFor("x.bpi", {"Board"});
    Start();
    for (int i = 0; i < 40; ++i) CreateBoard("Board");
    EXPECT_EQ(Objects().size(), 42u);
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(_oamDeleteBoard(("Board " + std::to_string(i * 7 % 40)).c_str()), OAM_SUCCESS);
        EXPECT_EQ(Objects().size(), 41u - static_cast<size_t>(i));
    }
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", "x.bpi"));
}

}  // namespace
}  // namespace oam::test
