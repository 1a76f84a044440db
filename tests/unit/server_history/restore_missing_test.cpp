// Data files that are missing come back at a start, unless somebody may have deleted the object.
#include <filesystem>

#include "history_fixture.h"
#include "support/file_limit.h"

namespace oam::server::test {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class RestoreMissing : public HistoryTest {
  protected:
    RestoreMissing() {
        files.CommitBoard("Obj0.xmo", "Board 1");
        files.CommitBoard("Obj1.xmo", "Board 2");
        (void)history->RestoreSpoiled();
        StartService("by the daemon");
        EXPECT_EQ(history->RecordUnannounced(), 0u);
    }
    // As far as it shows: a new start-up log.
    void StartService(const std::string& log) const {
        home.Write("oam/log/startup.log.new", log);
        fs::rename(home.Path("oam/log/startup.log.new"), home.Path("oam/log/startup.log"));
    }
};

TEST_F(RestoreMissing, PutsBackAFileThatNobodyDeleted) {
    files.Delete("Obj0.xmo");
    Reopen();
    EXPECT_THAT(
        history->RestoreSpoiled(),
        ElementsAre("\"Obj0.xmo\" was missing: \"Board 1\" is put back as of generation 1"));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), BoardFile("Board 1"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo", "Obj1.xmo"));
    EXPECT_THAT(Entries({.limit = 1}), ElementsAre("2 service restore: Board 1"));
}

TEST_F(RestoreMissing, PutsBackAWholeDirectory) {
    fs::remove_all(files.Directory());
    home.MakeDirectory("oam/cfg");
    Reopen();
    EXPECT_EQ(history->RestoreSpoiled().size(), 2u);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), BoardFile("Board 1"));
    EXPECT_EQ(home.ReadDataFile("Obj1.xmo"), BoardFile("Board 2"));
}

TEST_F(RestoreMissing, PutsBackNothingThatWasDeletedThroughTheDaemon) {
    files.Delete("Obj0.xmo");
    EXPECT_EQ(Record("ann", "delete"), 2u);
    Reopen();
    EXPECT_THAT(history->RestoreSpoiled(), IsEmpty());
    EXPECT_FALSE(home.Exists("oam/cfg/Obj0.xmo"));
}

TEST_F(RestoreMissing, PutsBackNothingThatMayHaveBeenDeletedWithoutTheDaemon) {
    history.reset();
    StartService("by a tool");
    files.Delete("Obj0.xmo");
    Reopen();
    EXPECT_THAT(
        history->RestoreSpoiled(),
        ElementsAre("\"Obj0.xmo\" is missing: \"Board 1\" counts as deleted, for the service "
                    "ran without the daemon since"));
    EXPECT_FALSE(home.Exists("oam/cfg/Obj0.xmo"));
    EXPECT_THAT(Entries({.limit = 1}), ElementsAre("2 (found at start) start: Board 1"));
    EXPECT_THAT(TextsOf(history->Compare(1, 2)), ElementsAre("deleted Board 1"));
    // It is told once.
    EXPECT_THAT(history->RestoreSpoiled(), IsEmpty());
}

TEST_F(RestoreMissing, PutsBackWhatTheServiceDroppedWithoutTheDaemon) {
    history.reset();
    files.Commit("Obj0.xmo", "");
    StartService("by a tool");
    fs::rename(files.Path("Obj0.xmo"), files.Path("Obj0.bak"));
    Reopen();
    EXPECT_THAT(history->RestoreSpoiled(), ElementsAre(HasSubstr("\"Obj0.xmo\" was missing")));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), BoardFile("Board 1"));
    EXPECT_EQ(home.ReadDataFile("Obj0.bak"), "");
}

TEST_F(RestoreMissing, TakesAGoodFileSetAsideForADeletion) {
    // A second file of another object is dropped too, and is no spoil.
    history.reset();
    StartService("by a tool");
    fs::rename(files.Path("Obj0.xmo"), files.Path("Obj0.bak"));
    Reopen();
    EXPECT_THAT(history->RestoreSpoiled(), ElementsAre(HasSubstr("counts as deleted")));
}

TEST_F(RestoreMissing, PutsSpoiledFilesBackWhoeverRanTheService) {
    history.reset();
    files.Commit("Obj0.xmo", "");
    StartService("by a tool");
    Reopen();
    EXPECT_THAT(history->RestoreSpoiled(), ElementsAre(HasSubstr("\"Board 1\" is put back")));
}

TEST_F(RestoreMissing, KnowsTheServicesLaterStartsForItsOwn) {
    StartService("again by the daemon");
    EXPECT_EQ(Record(), 0u);
    files.Delete("Obj0.xmo");
    Reopen();
    EXPECT_THAT(history->RestoreSpoiled(), ElementsAre(HasSubstr("was missing")));
}

TEST_F(RestoreMissing, DoesWithoutAStartUpLog) {
    home.Remove("oam/log/startup.log");
    EXPECT_EQ(Record(), 0u);
    files.Delete("Obj0.xmo");
    Reopen();
    EXPECT_THAT(history->RestoreSpoiled(), ElementsAre(HasSubstr("was missing")));
}

TEST_F(RestoreMissing, TakesAnObjectInAnotherFileForWhatItIs) {
    fs::rename(files.Path("Obj0.xmo"), files.Path("Obj7.xmo"));
    Reopen();
    EXPECT_THAT(history->RestoreSpoiled(), IsEmpty());
    EXPECT_FALSE(home.Exists("oam/cfg/Obj0.xmo"));
    EXPECT_EQ(history->Generations().newest, 1u);
}

TEST_F(RestoreMissing, TakesAnotherNameInTheFileForAHandEdit) {
    home.WriteDataFile("Obj0.xmo", BoardFile("Left"));
    Reopen();
    EXPECT_THAT(history->RestoreSpoiled(), IsEmpty());
    EXPECT_THAT(Entries({.limit = 1}), ElementsAre("2 (found at start) start: Left"));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), BoardFile("Left"));
}

TEST_F(RestoreMissing, TakesNoFailureToPutBackForADeletion) {
    files.Delete("Obj0.xmo");
    Reopen();
    (void)history->Generations();  // the book is open
    {
        const oam::test::FileSizeLimit limit(10);
        const auto said = history->RestoreSpoiled();
        ASSERT_FALSE(said.empty());
        EXPECT_THAT(said[0],
                    HasSubstr("\"Obj0.xmo\" is missing: \"Board 1\" cannot be put back: "));
    }
    EXPECT_EQ(Record(), 0u);
    Reopen();
    EXPECT_THAT(history->RestoreSpoiled(), ElementsAre(HasSubstr("\"Obj0.xmo\" was missing")));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), BoardFile("Board 1"));
}

}  // namespace oam::server::test
