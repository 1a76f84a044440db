// An import that did not end is the service's to undo; the old files are what counts.
#include <filesystem>

#include "history_fixture.h"

namespace oam::server::test {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class RestoreInAnImport : public HistoryTest {
  protected:
    // The machine stopped in the middle of an import: the old files are aside, one new one is
    // there.
    RestoreInAnImport() {
        files.CommitBoard("Obj0.xmo", "Board 1");
        files.CommitBoard("Obj1.xmo", "Board 2");
        (void)history->RestoreSpoiled();
        home.MakeDirectory("oam/cfg/import-aside");
        for (const char* name : {"Obj0.xmo", "Obj1.xmo"})
            fs::rename(files.Path(name), files.Path("import-aside/" + std::string(name)));
        files.CommitBoard("Obj0.xmo", "New");
        Reopen();
    }
    // As the service does at its start.
    void UndoTheImport() const {
        files.Delete("Obj0.xmo");
        for (const char* name : {"Obj0.xmo", "Obj1.xmo"})
            fs::rename(files.Path("import-aside/" + std::string(name)), files.Path(name));
        fs::remove(files.Path("import-aside"));
    }
};

TEST_F(RestoreInAnImport, MissesNoFileAndRecordsNothing) {
    EXPECT_THAT(history->RestoreSpoiled(), IsEmpty());
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo", "import-aside"));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), BoardFile("New"));
    EXPECT_EQ(history->Generations().newest, 1u);
    UndoTheImport();
    EXPECT_EQ(history->RecordUnannounced(), 0u);
    EXPECT_THAT(Objects(1), ElementsAre("Board 1", "Board 2"));
}

TEST_F(RestoreInAnImport, PutsBackSpoiledFilesAmongThoseAside) {
    files.Commit("import-aside/Obj1.xmo", "");
    EXPECT_THAT(
        history->RestoreSpoiled(),
        ElementsAre(HasSubstr("\"Board 2\" is put back as of generation 1; the spoiled file "
                              "is \"Obj1.xmo.spoiled-1\"")));
    EXPECT_EQ(home.ReadDataFile("import-aside/Obj1.xmo"), BoardFile("Board 2"));
    // Nothing lies there that the service would not take away with the directory.
    EXPECT_THAT(home.List("oam/cfg/import-aside"), ElementsAre("Obj0.xmo", "Obj1.xmo"));
    EXPECT_EQ(home.ReadDataFile("Obj1.xmo.spoiled-1"), "");
    UndoTheImport();
    EXPECT_EQ(history->RecordUnannounced(), 0u);
    EXPECT_THAT(Entries({.limit = 1}), ElementsAre("2 service restore: Board 2"));
}

TEST_F(RestoreInAnImport, LeavesSpoiledNewFiles) {
    files.Commit("Obj1.xmo", "");
    EXPECT_THAT(history->RestoreSpoiled(), IsEmpty());
    EXPECT_EQ(home.ReadDataFile("Obj1.xmo"), "");
}

}  // namespace oam::server::test
