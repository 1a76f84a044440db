// The two phases of a commit: in which order everyone is asked and told, and what a refusal leaves.
#include "config_room.h"
#include "noted_object.h"
#include "support/file_limit.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Commit : public ConfigRoom {
  protected:
    Commit() {
        home.WriteDataFile("Obj0.xmo", DataFile("Thing", {{"Key", "old"}, {"Name", "Thing"}}));
        thing = &NotedObject::InsertInto(registry, "Thing", "Obj0.xmo");
    }

    void Open(unsigned mode = kReadWrite) {
        ASSERT_EQ(registry.OpenObject(5, "Thing", &handle, mode), OAM_SUCCESS);
    }
    void Set(const char* keyword, const std::string& value) {
        ASSERT_EQ(thing->DbSetKeyword(keyword, value.c_str()), OAM_SUCCESS);
    }
    // The close is refused: closed all the same, nothing stored, nobody told.
    void ExpectRefused(oam_result expected) {
        const std::string before = home.ReadDataFile("Obj0.xmo");
        EXPECT_EQ(registry.CloseObject(handle, &closed), expected);
        EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), before);
        EXPECT_EQ(thing->OpenCount(), 0);
        EXPECT_EQ(openObjects().Count(), 0);
        EXPECT_STREQ(thing->Name(), "Thing");
        EXPECT_THAT(doors.CallsOf({"AlertNotify"}), IsEmpty());
    }

    CArrayPtrsToMObject registry{0, kTableGrowth};
    NotedObject* thing;
    unsigned long handle = 0;
    ClosedObject closed;
};

TEST_F(Commit, IsOnTheDiskBeforeBoardsAreAsked) {
    Open();
    Set("Key", "new");
    std::string beside;
    doors.On("BoardIDsValidateChanges", [&] {
        beside = home.ReadDataFile("Obj0.xmo.saving");
        return OAM_SUCCESS;
    });
    EXPECT_EQ(registry.CloseObject(handle, &closed), OAM_SUCCESS);
    EXPECT_EQ(beside, DataFile("Thing", {{"Key", "new"}, {"Name", "Thing"}}));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), beside);
    EXPECT_FALSE(home.Exists("oam/cfg/Obj0.xmo.saving"));
}

TEST_F(Commit, RefusedLeavesNothingBeside) {
    Open();
    Set("Key", "new");
    doors.Answer("BoardIDsValidateChanges", OAMERR_ALREADY_EXISTS);
    ExpectRefused(OAMERR_ALREADY_EXISTS);
    EXPECT_FALSE(home.Exists("oam/cfg/Obj0.xmo.saving"));
}

TEST_F(Commit, AsksBoardsThenObjectSavesAndTellsInTheSameOrder) {
    Open();
    Set("Key", "new");
    std::string savedAtHandling;
    doors.On("BoardIDsHandleChanges", [&] {
        savedAtHandling = home.ReadDataFile("Obj0.xmo");
        return OAM_SUCCESS;
    });
    EXPECT_EQ(registry.CloseObject(handle, &closed), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(),
                ElementsAre("Thing.TrapClose", "BoardIDsValidateChanges(Thing, handle)",
                            "Thing.ValidateChanges", "BoardIDsHandleChanges(Thing)",
                            "Thing.HandleChanges", "BoardIDsValidateChangesCleanup()",
                            "Thing.ValidateChangesCleanup"));
    EXPECT_EQ(savedAtHandling, DataFile("Thing", {{"Key", "new"}, {"Name", "Thing"}}));
    EXPECT_TRUE(closed.modified);
    EXPECT_STREQ(closed.name, "Thing");
}

TEST_F(Commit, ValidationSeesTheObjectStillOpenAndHandlingSeesItClosed) {
    Open();
    int whenValidated = -1;
    int whenHandled = -1;
    doors.On("ValidateChanges", [&] {
        whenValidated = thing->OpenCount();
        return OAM_SUCCESS;
    });
    doors.On("HandleChanges", [&] {
        whenHandled = thing->OpenCount();
        return OAM_SUCCESS;
    });
    EXPECT_EQ(registry.CloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(whenValidated, 1);
    EXPECT_EQ(whenHandled, 0);
}

TEST_F(Commit, OfADatabaseHandleLeavesTheTrapOut) {
    ASSERT_EQ(registry.DbOpenObject(5, "Thing", &handle, kReadWrite), OAM_SUCCESS);
    EXPECT_EQ(registry.DbCloseObject(handle), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(),
                ElementsAre("BoardIDsValidateChanges(Thing, handle)", "Thing.ValidateChanges",
                            "BoardIDsHandleChanges(Thing)", "Thing.HandleChanges",
                            "BoardIDsValidateChangesCleanup()", "Thing.ValidateChangesCleanup"));
}

TEST_F(Commit, OfAReaderIsItsTrapAlone) {
    Open(OAM_OPEN_PROVIDER);
    EXPECT_EQ(registry.CloseObject(handle, &closed), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(), ElementsAre("Thing.TrapClose"));
    EXPECT_FALSE(closed.modified);
}

TEST_F(Commit, RefusedByTheTrapAsksNobodyElse) {
    Open();
    Set("Key", "new");
    doors.Answer("TrapClose", oam_result(9));
    ExpectRefused(oam_result(9));
    EXPECT_THAT(doors.Calls(), ElementsAre("Thing.TrapClose"));
}

TEST_F(Commit, WithoutANameIsRefusedAndCleanedUp) {
    home.WriteDataFile("Obj0.xmo", DataFile("Thing", {{"Key", "old"}}));
    Open();
    Set("Key", "new");
    ExpectRefused(OAMERR_NOT_FOUND);
    EXPECT_THAT(doors.Calls(), ElementsAre("Thing.TrapClose", "BoardIDsValidateChangesCleanup()",
                                           "Thing.ValidateChangesCleanup"));
}

TEST_F(Commit, WithANameThatDoesNotFitIsRefused) {
    Open();
    Set("Name", std::string(128, 'n'));
    ExpectRefused(OAMERR_NOT_ENOUGH_MEMORY);
    Open();
    Set("Name", std::string(127, 'n'));
    EXPECT_EQ(registry.CloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(thing->Name(), std::string(127, 'n'));
}

TEST_F(Commit, WithTheNameOfAnotherIsRefusedBeforeTheBoardsAreAsked) {
    ASSERT_EQ(registry.Insert("Other", nullptr), OAM_SUCCESS);
    Open();
    Set("Key", "new");
    Set("Name", "OTHER");
    ExpectRefused(OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(doors.Calls(), ElementsAre("Thing.TrapClose", "BoardIDsValidateChangesCleanup()",
                                           "Thing.ValidateChangesCleanup"));
}

TEST_F(Commit, RefusedByTheBoardsDoesNotAskTheObject) {
    Open();
    Set("Key", "new");
    doors.Answer("BoardIDsValidateChanges", OAMERR_ALREADY_EXISTS);
    ExpectRefused(OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(doors.Calls(),
                ElementsAre("Thing.TrapClose", "BoardIDsValidateChanges(Thing, handle)",
                            "BoardIDsValidateChangesCleanup()", "Thing.ValidateChangesCleanup"));
}

TEST_F(Commit, RefusedByTheObjectIsCleanedUp) {
    Open();
    Set("Key", "new");
    doors.Answer("ValidateChanges", oam_result(8));
    ExpectRefused(oam_result(8));
    EXPECT_THAT(doors.Calls(),
                ElementsAre("Thing.TrapClose", "BoardIDsValidateChanges(Thing, handle)",
                            "Thing.ValidateChanges", "BoardIDsValidateChangesCleanup()",
                            "Thing.ValidateChangesCleanup"));
}

TEST_F(Commit, ThatCannotBeSavedIsCleanedUpAndNotHandled) {
    Open();
    Set("Key", std::string(10000, 'x'));
    {
        const FileSizeLimit limit(5);
        ExpectRefused(OAMERR_FILE_WRITE_ERROR);
    }
    EXPECT_THAT(doors.Calls(),
                ElementsAre("Thing.TrapClose", "BoardIDsValidateChanges(Thing, handle)",
                            "Thing.ValidateChanges", "BoardIDsValidateChangesCleanup()",
                            "Thing.ValidateChangesCleanup"));
}

TEST_F(Commit, RefusedOneLeavesNothingForTheNext) {
    Open();
    Set("Name", "Fresh");
    doors.Answer("ValidateChanges", oam_result(8));
    ExpectRefused(oam_result(8));
    doors.Answer("ValidateChanges", OAM_SUCCESS);
    doors.TakeCalls();
    Open();
    Set("Key", "new");
    EXPECT_EQ(registry.CloseObject(handle, &closed), OAM_SUCCESS);
    EXPECT_STREQ(thing->Name(), "Thing");
    EXPECT_STREQ(closed.name, "Thing");
    EXPECT_THAT(doors.CallsOf({"AlertNotify"}), IsEmpty());
}

TEST_F(Commit, RenameTellsBoardsTheOldNameAndTheObjectTheNew) {
    Open();
    Set("Name", "Fresh");
    EXPECT_EQ(registry.CloseObject(handle, &closed), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(),
                ElementsAre("Thing.TrapClose", "BoardIDsValidateChanges(Thing, handle)",
                            "Thing.ValidateChanges", "BoardIDsHandleChanges(Thing)",
                            "Fresh.HandleChanges", "BoardIDsValidateChangesCleanup()",
                            "Fresh.ValidateChangesCleanup",
                            "AlertNotify(OAMEVN_RENAMED, 0, Fresh, Thing)"));
    EXPECT_STREQ(closed.name, "Fresh");
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), DataFile("Fresh", {{"Key", "old"}, {"Name", "Fresh"}}));
    EXPECT_EQ(thing->Load(), OAM_SUCCESS) << "what was written can be read back";
}

TEST_F(Commit, NewSpellingOfTheSameNameIsARename) {
    Open();
    Set("Name", "tHING");
    EXPECT_EQ(registry.CloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(doors.Calls().back(), "AlertNotify(OAMEVN_RENAMED, 0, tHING, Thing)");
    EXPECT_THAT(Names(registry), ElementsAre("tHING"));
}

TEST_F(Commit, ForeignNameIsNeverAFormat) {
    Open();
    Set("Name", "100%s%n");
    EXPECT_EQ(registry.CloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(doors.Calls().back(), "AlertNotify(OAMEVN_RENAMED, 0, 100%s%n, Thing)");
}

TEST_F(Commit, HandleOfAnObjectThatIsGoneIsNotFound) {
    Open();
    KOR_CMObject stray("Stray", "Stray.xmo");
    unsigned long strayHandle = 0;
    ASSERT_EQ(stray.DbOpen(5, &strayHandle, kReadWrite), OAM_SUCCESS);
    EXPECT_EQ(registry.CloseObject(strayHandle), OAMERR_NOT_FOUND);
    EXPECT_EQ(stray.DbClose(strayHandle, true), OAM_SUCCESS);
    EXPECT_EQ(registry.CloseObject(handle), OAM_SUCCESS);
}

// ---- Where a renamed object goes

class Rename : public ConfigRoom {
  protected:
    Rename() {
        for (const char* name : {"b", "d", "f", "h"}) {
            NotedObject::InsertInto(registry, name, (std::string(name) + ".xmo").c_str());
        }
    }
    std::vector<std::string> After(const char* from, const char* to) {
        unsigned long handle = 0;
        EXPECT_EQ(registry.DbOpenObject(1, from, &handle, kProvide), OAM_SUCCESS);
        EXPECT_EQ(registry.Find(from)->DbSetKeyword("Name", to), OAM_SUCCESS);
        EXPECT_EQ(registry.DbCloseObject(handle), OAM_SUCCESS);
        return Names(registry);
    }

    CArrayPtrsToMObject registry{0, kTableGrowth};
};

TEST_F(Rename, MovesDownToItsPlace) { EXPECT_THAT(After("h", "c"), ElementsAre("b", "c", "d", "f")); }

TEST_F(Rename, MovesToTheFront) { EXPECT_THAT(After("f", "a"), ElementsAre("a", "b", "d", "h")); }

TEST_F(Rename, MovesUpToItsPlace) { EXPECT_THAT(After("b", "g"), ElementsAre("d", "f", "g", "h")); }

TEST_F(Rename, MovesToTheEnd) { EXPECT_THAT(After("d", "z"), ElementsAre("b", "f", "h", "z")); }

TEST_F(Rename, StaysWhereItsPlaceIsTheSame) {
    EXPECT_THAT(After("d", "c"), ElementsAre("b", "c", "f", "h"));
    EXPECT_THAT(After("c", "e"), ElementsAre("b", "e", "f", "h"));
    EXPECT_THAT(After("f", "F"), ElementsAre("b", "e", "F", "h"));
}

}  // namespace
}  // namespace oam::test
