// Creating and deleting objects, and a creation that leaves the table lock taken.
#include <thread>

#include "base/database_lock.h"
#include "config_room.h"
#include "noted_object.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Creation : public ConfigRoom {
  protected:
    ~Creation() override { manager.Exit(); }
    CMObjMgr manager;
};

TEST_F(Creation, WritesTheStandardKeywordsBeforeTheKindIsAsked) {
    std::vector<std::string> atCreation;
    doors.On("BoardCreate", [&] {
        atCreation = home.List("oam/cfg");
        return OAM_SUCCESS;
    });
    EXPECT_EQ(manager.CreateObject("Board 1", "Prod"), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"BoardCreate"}), ElementsAre("BoardCreate(Prod, Board 1)"));
    EXPECT_THAT(atCreation, ElementsAre("Obj0.xmo.making")) << "no start would read it yet";
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), DataFile("Board 1", StandardEntries("Board 1", "Prod")));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo"));
}

TEST_F(Creation, WithoutAProductWritesNone) {
    EXPECT_EQ(manager.CreateObject("x.bpi", nullptr), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("x.xmo"), DataFile("x.bpi", StandardEntries("x.bpi")));
}

TEST_F(Creation, RemovesAStaleDataFile) {
    home.WriteDataFile("Obj0.xmo", DataFile("Board 1", {{"Stale", "x"}}));
    EXPECT_EQ(manager.CreateObject("Board 1", nullptr), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), DataFile("Board 1", StandardEntries("Board 1")));
}

TEST_F(Creation, OfATakenNameChangesNothing) {
    EXPECT_EQ(manager.CreateObject("Board 1", nullptr), OAM_SUCCESS);
    doors.TakeCalls();
    EXPECT_EQ(manager.CreateObject("BOARD 1", "Prod"), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(doors.Calls(), IsEmpty());
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), DataFile("Board 1", StandardEntries("Board 1")));
}

TEST_F(Creation, RefusedByTheKindIsTakenBack) {
    doors.Answer("BoardCreate", oam_result(0x55));
    EXPECT_EQ(manager.CreateObject("Board 1", "Prod"), oam_result(0x55));
    EXPECT_EQ(manager.Count(), 0);
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
    EXPECT_EQ(doors.Calls().back(), "AlertNotify(OAMEVN_DELETED, 0, Board 1, )");
}

TEST_F(Creation, RefusedByTheKindAndNotGivenUpByItStays) {
    doors.Answer("BoardCreate", oam_result(0x55));
    doors.Answer("BoardDelete", oam_result(0x66));
    EXPECT_EQ(manager.CreateObject("Board 1", "Prod"), oam_result(0x55));
    EXPECT_THAT(Names(manager), ElementsAre("Board 1"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo"));
}

TEST_F(Creation, ThatTheKindUndoesItselfIsNotFound) {
    doors.On("BoardCreate", [&] { return manager.Remove("Board 1"); });
    EXPECT_EQ(manager.CreateObject("Board 1", "Prod"), OAMERR_NOT_FOUND);
    EXPECT_EQ(manager.Count(), 0);
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
}

TEST_F(Creation, ThatCannotBeValidatedIsTakenBack) {
    doors.Answer("BoardIDsValidateChanges", OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(manager.CreateObject("Board 1", "Prod"), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(manager.Count(), 0);
    EXPECT_THAT(doors.CallsOf({"BoardCreate"}), IsEmpty());
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
}

TEST_F(Creation, KeptObjectThatRefusesItsKeywordsStaysOpen) {
    NotedObject::InsertInto(manager, "Thing", "Thing.xmo");
    doors.Answer("InitKeywords", oam_result(0x77));
    EXPECT_EQ(manager.InitKeywords("Thing", nullptr), oam_result(0x77));
    EXPECT_EQ(manager.Find("Thing")->OpenCount(), 1);
    EXPECT_EQ(openObjects().Count(), 1);
    openObjects().RemoveAll();
}

TEST_F(Creation, InitialisingAnUnknownOrBusyObjectIsRefused) {
    EXPECT_EQ(manager.InitKeywords("None", nullptr), OAMERR_NOT_FOUND);
    NotedObject::InsertInto(manager, "Thing", "Thing.xmo");
    unsigned long handle = 0;
    ASSERT_EQ(manager.DbOpenObject(1, "Thing", &handle, 0), OAM_SUCCESS);
    EXPECT_EQ(manager.InitKeywords("Thing", nullptr), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(manager.DbCloseObject(handle), OAM_SUCCESS);
}

TEST_F(Creation, ByProductTakesTheFirstFreeNumber) {
    char name[32];
    for (const char* expected : {"Prod 0", "Prod 1"}) {
        EXPECT_EQ(manager.CreateObjectByProduct("Prod", name, sizeof name), OAM_SUCCESS);
        EXPECT_STREQ(name, expected);
    }
    EXPECT_EQ(manager.CreateObjectByProduct("Prod", name, 16), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(manager.Count(), 2);
}

TEST_F(Creation, FailedDeletionIsToldToTheSink) {
    EXPECT_EQ(manager.DeleteObject("100%s"), OAMERR_NOT_FOUND);
    EXPECT_EQ(doors.DebugText(), "Fail to Delete Object 100%s with error code 0x40000004.\n");
}

TEST_F(Creation, FailedDeletionOfAllBoardsIsToldToTheSink) {
    EXPECT_EQ(manager.DeleteObject(nullptr), OAM_SUCCESS);
    EXPECT_EQ(manager.CreateObject("Board 1", nullptr), OAM_SUCCESS);
    doors.Answer("BoardDelete", oam_result(9));
    EXPECT_EQ(manager.DeleteObject(nullptr), oam_result(9));
    EXPECT_EQ(doors.DebugText(), "Call to Object Board 1 TrapDelete with error code 0x9.\n"
                                 "Fail to Delete All Objects with error code 0x9.\n");
}

// ---- Through the entry point

class CreateBoard : public ConfigRoom {
  protected:
    CreateBoard() { Start(); }
    char name[64] = "before";
};

TEST_F(CreateBoard, KeptTellsTheCreationWhateverTheResult) {
    EXPECT_EQ(_oamCreateBoard("Prod", name, sizeof name), OAM_SUCCESS);
    EXPECT_EQ(doors.Calls().back(), "AlertNotify(OAMEVN_CREATED, 0, Prod 0, )");
    doors.Answer("BoardCreate", oam_result(9));
    EXPECT_EQ(_oamCreateBoard("Prod", name, sizeof name), oam_result(9));
    EXPECT_EQ(doors.Calls().back(), "AlertNotify(OAMEVN_CREATED, 0, Prod 1, )");
    EXPECT_EQ(_oamCreateBoard(nullptr, name, sizeof name), OAMERR_NOT_FOUND);
    EXPECT_EQ(doors.Calls().back(), "AlertNotify(OAMEVN_CREATED, 0, Prod 1, )");
}

TEST_F(CreateBoard, TellsNoMoreThanItsBufferHolds) {
    memset(name, 'x', sizeof name);
    EXPECT_EQ(_oamCreateBoard("Prod", name, 5), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(doors.Calls().back(), "AlertNotify(OAMEVN_CREATED, 0, xxxxx, )");
    EXPECT_EQ(_oamCreateBoard("Prod", nullptr, 64), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(doors.Calls().back(), "AlertNotify(OAMEVN_CREATED, 0, , )");
    std::string large(300, 'y');
    EXPECT_EQ(_oamCreateBoard(std::string(290, 'p').c_str(), large.data(), 300),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(doors.Calls().back(),
              "AlertNotify(OAMEVN_CREATED, 0, " + std::string(127, 'y') + ", )");
}

TEST_F(CreateBoard, TellsItWithTheManagerLockReleased) {
    int depth = -1;
    doors.On("AlertNotify", [&] {
        depth = ManagerMutex::Depth();
        return OAM_SUCCESS;
    });
    EXPECT_EQ(_oamCreateBoard("Prod", name, sizeof name), OAM_SUCCESS);
    EXPECT_EQ(depth, 0);
}

TEST_F(CreateBoard, KeptFailureLeavesTheTableLockUntilTheThreadAsksAgain) {
    doors.On("BoardCreate", []() NO_THREAD_SAFETY_ANALYSIS {
        TableLock().Lock();
        return oam_result(9);
    });
    int atAlert = -1;
    doors.On("AlertNotify", [&] {
        atAlert = TableMutex::Depth();
        return OAM_SUCCESS;
    });
    EXPECT_EQ(_oamCreateBoard("Prod", name, sizeof name), oam_result(9));
    EXPECT_EQ(atAlert, 1);
    EXPECT_EQ(TableMutex::Depth(), 1);
    EXPECT_EQ(_oamCreateBoard("Prod", name, sizeof name), oam_result(9));
    EXPECT_EQ(TableMutex::Depth(), 1) << "one, however often it fails";
    EXPECT_EQ(_oamDbEnumObjects(0, name, sizeof name), OAM_SUCCESS);
    EXPECT_EQ(TableMutex::Depth(), 0);
}

TEST_F(CreateBoard, FailureInsideAnotherCreationBelongsToTheOuter) {
    char inner[64];
    bool nested = false;
    doors.On("BoardCreate", [&]() NO_THREAD_SAFETY_ANALYSIS {
        if (!std::exchange(nested, true)) {
            EXPECT_EQ(_oamCreateBoard("Inner", inner, sizeof inner), oam_result(9));
            EXPECT_EQ(TableMutex::Depth(), 1) << "the outer frame still runs";
            return OAM_SUCCESS;
        }
        TableLock().Lock();
        return oam_result(9);
    });
    EXPECT_EQ(_oamCreateBoard("Outer", name, sizeof name), OAM_SUCCESS);
    { const ManagerGuard hold; }
    EXPECT_EQ(TableMutex::Depth(), 0);
}

}  // namespace
}  // namespace oam::test
