// Closing a writer: validation, saving, handling; what a refusal drops.
#include <filesystem>

#include "support/file_limit.h"
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Commit : public ServiceTest {
  protected:
    void StartWithThings(const std::vector<std::string>& names) {
        for (const std::string& name : names) {
            home.WriteDataFile(name + ".xmo", DataFile(name, {{"Key", "old"}, {"Name", name}}));
        }
        Start();
        alerts.Clear();
    }

    // Sets one keyword and leaves the handle open.
    unsigned long Pending(const std::string& object, const std::string& keyword,
                          const std::string& value) {
        const unsigned long handle = DbOpen(object, kProvider);
        EXPECT_EQ(_oamDbSetKeyword(handle, keyword.c_str(), value.c_str()), OAM_SUCCESS);
        return handle;
    }
};

TEST_F(Commit, SavesTheListInItsOrder) {
    StartWithThings({"Thing"});
    const unsigned long handle = Pending("Thing", "b", "2");
    EXPECT_EQ(_oamDbSetKeyword(handle, "A", "1"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetQualifier(handle, "A", "Type", "Integer"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbRemoveKeyword(handle, "Key"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(
        home.ReadDataFile("Thing.xmo"),
        DataFile("Thing", {{"A", "1"}, {"A?Type", "Integer"}, {"b", "2"}, {"Name", "Thing"}}));
}

TEST_F(Commit, NothingIsSavedBeforeTheClose) {
    StartWithThings({"Thing"});
    const std::string before = home.ReadDataFile("Thing.xmo");
    const unsigned long handle = Pending("Thing", "Key", "new");
    EXPECT_EQ(home.ReadDataFile("Thing.xmo"), before);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Thing.xmo"),
              DataFile("Thing", {{"Key", "new"}, {"Name", "Thing"}}));
}

TEST_F(Commit, WriterSavesEvenWhenItChangedNothing) {
    StartWithThings({"Thing"});
    const unsigned long handle = DbOpen("Thing", kWrite);
    home.Remove("oam/cfg/Thing.xmo");
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Thing.xmo"),
              DataFile("Thing", {{"Key", "old"}, {"Name", "Thing"}}));
}

TEST_F(Commit, ReaderSavesNothing) {
    StartWithThings({"Thing"});
    const unsigned long first = DbOpen("Thing", kRead);
    const unsigned long second = DbOpen("Thing", kProviderRead);
    home.Remove("oam/cfg/Thing.xmo");
    EXPECT_EQ(_oamDbCloseObject(first), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(second), OAM_SUCCESS);
    EXPECT_FALSE(home.Exists("oam/cfg/Thing.xmo"));
}

TEST_F(Commit, ReplacesTheFileInsteadOfWritingIntoIt) {
    StartWithThings({"Thing"});
    const std::string before = home.ReadDataFile("Thing.xmo");
    std::filesystem::create_hard_link(home.Path("oam/cfg/Thing.xmo"), home.Path("oam/old"));
    EXPECT_EQ(DbChange("Thing", "Key", "new"), OAM_SUCCESS);
    EXPECT_EQ(home.Read("oam/old"), before) << "a crash in between would find the old file";
    EXPECT_EQ(StoredKeywordOf("Thing", "Key"), Is("new"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo", "Thing.xmo"));
}

TEST_F(Commit, FailedSaveKeepsTheOldFileAndClosesTheHandle) {
    StartWithThings({"Thing"});
    const std::string before = home.ReadDataFile("Thing.xmo");
    const unsigned long handle = Pending("Thing", "Key", std::string(1000, 'x'));
    {
        FileSizeLimit limit(10);
        EXPECT_EQ(_oamDbCloseObject(handle), OAMERR_FILE_WRITE_ERROR);
    }
    EXPECT_EQ(home.ReadDataFile("Thing.xmo"), before);
    EXPECT_EQ(DbChange("Thing", "Key", "new"), OAM_SUCCESS) << "the object is closed";
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo", "Thing.xmo"));
}

TEST_F(Commit, FailedSaveRaisesNoAlertAndDoesNotRename) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    const std::string board = CreateBoard("Prod");
    const unsigned long handle = Open(board, kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "Name", "Renamed"), OAM_SUCCESS);
    home.Remove("oam/cfg/Obj0.xmo");
    home.MakeDirectory("oam/cfg/Obj0.xmo/occupied");
    alerts.Clear();
    EXPECT_EQ(_oamCloseObject(handle), OAMERR_FILE_WRITE_ERROR);
    EXPECT_THAT(alerts.All(), IsEmpty());
    EXPECT_THAT(Objects(), ElementsAre("Prod 0", "Supervisor", "x.bpi"));
    home.Remove("oam/cfg/Obj0.xmo");
    const unsigned long again = DbOpen("Prod 0", kProvider);
    EXPECT_EQ(_oamDbSetKeyword(again, "Name", "Prod 0"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetKeyword(again, "Number", "0"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(again), OAM_SUCCESS) << "the object is closed and no lock is held";
}

TEST_F(Commit, ObjectWithoutANameCannotBeCommitted) {
    StartWithThings({"Thing"});
    const std::string before = home.ReadDataFile("Thing.xmo");
    const unsigned long handle = Pending("Thing", "Key", "new");
    EXPECT_EQ(_oamDbRemoveKeyword(handle, "Name"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAMERR_NOT_FOUND);
    EXPECT_EQ(home.ReadDataFile("Thing.xmo"), before);
    EXPECT_EQ(StoredKeywordOf("Thing", "Key"), Is("old"));
}

TEST_F(Commit, NameOf128CharactersCannotBeCommitted) {
    StartWithThings({"Thing"});
    EXPECT_EQ(DbChange("Thing", "Name", std::string(128, 'n')), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(StoredKeywordOf("Thing", "Name"), Is("Thing"));
    EXPECT_EQ(DbChange("Thing", "Name", std::string(127, 'n')), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre(std::string(127, 'n'), "Supervisor"));
}

TEST_F(Commit, NameThatIsTakenIsRefusedWhenItIsSet) {
    StartWithThings({"One", "Two"});
    const unsigned long handle = DbOpen("One", kWrite);
    for (const char* name : {"Two", "TWO", "Supervisor", "supervisor"}) {
        EXPECT_EQ(_oamDbSetKeyword(handle, "Name", name), OAMERR_ALREADY_EXISTS) << name;
        EXPECT_EQ(_oamDbSetKeyword(handle, "NAME", name), OAMERR_ALREADY_EXISTS) << name;
    }
    EXPECT_EQ(DbGetKeyword(handle, "Name"), Is("One"));
    for (const char* name : {"One", "ONE", "Three"}) {
        EXPECT_EQ(_oamDbSetKeyword(handle, "Name", name), OAM_SUCCESS) << name;
    }
    EXPECT_EQ(_oamDbSetKeyword(handle, "Name", "One"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
}

TEST_F(Commit, NameTakenSinceItWasSetIsRefusedAtTheClose) {
    StartWithThings({"One", "Two"});
    const std::string before = home.ReadDataFile("One.xmo");
    const unsigned long first = Pending("One", "Name", "New");
    EXPECT_EQ(_oamDbSetKeyword(first, "Key", "new"), OAM_SUCCESS);
    const unsigned long second = Pending("Two", "Name", "NEW");
    EXPECT_EQ(_oamDbCloseObject(second), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(_oamDbCloseObject(first), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(alerts.All(), IsEmpty());
    EXPECT_EQ(home.ReadDataFile("One.xmo"), before) << "nothing of a refused change is kept";
    EXPECT_EQ(StoredKeywordOf("One", "Key"), Is("old"));
    EXPECT_THAT(Objects(), ElementsAre("NEW", "One", "Supervisor"));
}

// With the object's own close before it.
constexpr oam_result (*kObjectCloses[])(unsigned long) = {_oamCloseObject, _oamCloseObject_WOAN};

TEST_F(Commit, BoardWithoutANameCannotBeCommitted) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    const std::string board = CreateBoard("Prod");
    for (const auto close : kObjectCloses) {
        const unsigned long handle = Open(board, kProvider);
        EXPECT_EQ(_oamDbRemoveKeyword(handle, "Name"), OAM_SUCCESS);
        alerts.Clear();
        EXPECT_EQ(close(handle), OAMERR_NOT_FOUND);
        EXPECT_THAT(alerts.All(), IsEmpty());
        EXPECT_EQ(StoredKeywordOf(board, "Name"), Is(board));
    }
}

TEST_F(Commit, BoardsNameTakenSinceItWasSetIsRefusedAtTheClose) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    const std::string one = CreateBoard("Prod");
    const std::string two = CreateBoard("Prod");
    for (const auto close : kObjectCloses) {
        const unsigned long handle = Open(one, kWrite);
        EXPECT_EQ(_oamSetKeyword(handle, "Name", "New"), OAM_SUCCESS);
        EXPECT_EQ(DbChange(two, "Name", "NEW"), OAM_SUCCESS);
        alerts.Clear();
        EXPECT_EQ(close(handle), OAMERR_ALREADY_EXISTS);
        EXPECT_THAT(alerts.All(), IsEmpty());
        EXPECT_EQ(StoredKeywordOf(one, "Name"), Is(one));
        EXPECT_EQ(DbChange("NEW", "Name", two), OAM_SUCCESS);
    }
}

TEST_F(Commit, RefusedByThePluginsCloseDropsTheChanges) {
    AddPlugin("x.bpi");
    Start();
    const std::string before = home.ReadDataFile("x.xmo");
    const unsigned long handle = Open("x.bpi", kProvider);
    EXPECT_EQ(_oamSetKeyword(handle, "Key", "new"), OAM_SUCCESS);
    recorder.Script("x.bpi", [](ModuleScript& script) {
        script.closeObject = [](unsigned long) { return 0x99u; };
    });
    EXPECT_EQ(_oamCloseObject_WOAN(handle), 0x99u);
    EXPECT_EQ(home.ReadDataFile("x.xmo"), before);
    EXPECT_EQ(StoredKeywordOf("x.bpi", "Key"), Fails(OAMERR_NOT_FOUND)) << "and it is closed";
}

TEST_F(Commit, PluginMayStillChangeItsObjectInItsClose) {
    AddPlugin("x.bpi");
    Start();
    recorder.Script("x.bpi", [](ModuleScript& script) {
        script.closeObject = [](unsigned long handle) {
            return unsigned{_oamDbSetKeyword(handle, "Late", "yes")};
        };
    });
    const unsigned long handle = Open("x.bpi", kProvider);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(StoredKeywordOf("x.bpi", "Late"), Is("yes"));
}

TEST_F(Commit, DatabasesCloseDoesNotAskThePlugin) {
    AddPlugin("x.bpi");
    Start();
    recorder.Clear();
    EXPECT_EQ(DbChange("x.bpi", "Key", "value"), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"OpenObject", "CloseObject", "SetKeyword"}), IsEmpty());
}

TEST_F(Commit, OfOneObjectLeavesTheOthersPendingChanges) {
    StartWithThings({"One", "Two"});
    const unsigned long first = Pending("One", "Key", "new");
    EXPECT_EQ(DbChange("Two", "Key", "other"), OAM_SUCCESS);
    EXPECT_EQ(DbGetKeyword(first, "Key"), Is("new"));
    EXPECT_EQ(_oamDbCloseObject(first), OAM_SUCCESS);
    EXPECT_EQ(StoredKeywordOf("One", "Key"), Is("new"));
    EXPECT_EQ(StoredKeywordOf("Two", "Key"), Is("other"));
}

}  // namespace
}  // namespace oam::test
