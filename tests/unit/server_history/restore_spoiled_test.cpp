// Data files that hold no object any more come back at a start.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "history_fixture.h"
#include "support/file_limit.h"

namespace oam::server::test {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

class RestoreSpoiled : public HistoryTest {
  protected:
    RestoreSpoiled() {
        files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "1"}});
        files.CommitBoard("Obj1.xmo", "Board 2");
        (void)history->RestoreSpoiled();
        files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "7"}});
        Record();
        Reopen();
    }
    const std::string good = BoardFile("Board 1", {{"Number", "7"}});
};

TEST_F(RestoreSpoiled, LeavesAloneWhatIsGood) {
    EXPECT_THAT(history->RestoreSpoiled(), IsEmpty());
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo", "Obj1.xmo"));
    EXPECT_EQ(history->Generations().newest, 2u);
}

TEST_F(RestoreSpoiled, PutsBackAFileWhateverHappenedToIt) {
    int number = 0;
    for (const std::string& spoiled :
         {std::string(), std::string("\0\0\0\0\0\0\0\0", 8), good.substr(0, good.size() / 2),
          good.substr(0, good.size() - 1 - 39), "\x7f" + good, good + "<",
          std::string("<?XML version=\"1.0\"?>\n"), std::string(100000, 'x'),
          BoardFile("Board 1").replace(60, 1, "<"),
          // Two objects in one file.
          DataFile("Board 1", {{"Name", "Board 1"}}).insert(59, "<B><Name>B</></B>")}) {
        ++number;
        files.Commit("Obj0.xmo", spoiled);
        const auto said = history->RestoreSpoiled();
        const std::string aside = "Obj0.xmo.spoiled-" + std::to_string(number);
        ASSERT_EQ(said.size(), 1u) << spoiled;
        EXPECT_THAT(said[0], StartsWith("Obj0.xmo:"));
        EXPECT_THAT(said[0], HasSubstr(": \"Board 1\" is put back as of generation 2; the spoiled "
                                       "file is \"" +
                                       aside + '"'));
        EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), good) << spoiled;
        EXPECT_EQ(home.ReadDataFile(aside), spoiled);
        EXPECT_THAT(Entries({.limit = 1}),
                    ElementsAre(std::to_string(2 + number) + " service restore: Board 1"));
    }
    EXPECT_EQ(home.ReadDataFile("Obj1.xmo"), BoardFile("Board 2"));
}

TEST_F(RestoreSpoiled, PutsBackWhatIsNoFileAnyMore) {
    files.Delete("Obj0.xmo");
    home.MakeDirectory("oam/cfg/Obj0.xmo");
    home.WriteDataFile("Obj0.xmo/inside", "x");
    EXPECT_THAT(history->RestoreSpoiled(),
                ElementsAre(HasSubstr("\"Obj0.xmo\": it is not a regular file: \"Board 1\" is put "
                                      "back")));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), good);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo.spoiled-1/inside"), "x");
    files.Delete("Obj0.xmo");
    ASSERT_EQ(mkfifo(files.Path("Obj0.xmo").c_str(), 0600), 0);
    EXPECT_EQ(history->RestoreSpoiled().size(), 1u);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), good);
    files.Delete("Obj0.xmo");
    fs::create_symlink("nowhere", files.Path("Obj0.xmo"));
    EXPECT_EQ(history->RestoreSpoiled().size(), 1u);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), good);
    EXPECT_TRUE(fs::is_symlink(files.Path("Obj0.xmo.spoiled-3")));
}

TEST_F(RestoreSpoiled, PutsBackSeveral) {
    files.Commit("Obj0.xmo", "");
    files.Commit("Obj1.xmo", "");
    EXPECT_EQ(history->RestoreSpoiled().size(), 2u);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), good);
    EXPECT_EQ(home.ReadDataFile("Obj1.xmo"), BoardFile("Board 2"));
    EXPECT_THAT(Entries({.limit = 2}),
                UnorderedElementsAre("3 service restore: Board 1", "3 service restore: Board 2"));
}

TEST_F(RestoreSpoiled, KeepsThePermissions) {
    files.Commit("Obj0.xmo", "");
    ASSERT_EQ(chmod(files.Path("Obj0.xmo").c_str(), 0604), 0);
    (void)history->RestoreSpoiled();
    struct stat status {};
    ASSERT_EQ(stat(files.Path("Obj0.xmo").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0604u);
}

TEST_F(RestoreSpoiled, LeavesToTheServiceWhatItHasNoVersionOf) {
    files.Commit("Obj9.xmo", "rubbish");
    EXPECT_THAT(
        history->RestoreSpoiled(),
        ElementsAre(HasSubstr("; the history has nothing to put in its place: it is left as "
                              "it is")));
    EXPECT_EQ(home.ReadDataFile("Obj9.xmo"), "rubbish");
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo", "Obj1.xmo", "Obj9.xmo"));
}

TEST_F(RestoreSpoiled, LeavesASpoiledFileWhoseObjectIsElsewhere) {
    files.Commit("Obj5.xmo", good);
    files.Commit("Obj0.xmo", "");
    EXPECT_THAT(history->RestoreSpoiled(), ElementsAre(HasSubstr("it is left as it is")));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), "");
    // And the object is followed.
    files.Delete("Obj0.xmo");
    files.Commit("Obj5.xmo", "");
    Reopen();
    EXPECT_THAT(history->RestoreSpoiled(), ElementsAre(HasSubstr("\"Board 1\" is put back")));
    EXPECT_EQ(home.ReadDataFile("Obj5.xmo"), good);
}

TEST_F(RestoreSpoiled, LeavesWhatItCannotReadNow) {
    fs::resize_file(files.Path("Obj0.xmo"), (std::uintmax_t{64} << 20) + 1);
    EXPECT_THAT(history->RestoreSpoiled(),
                ElementsAre("\"Obj0.xmo\": it is larger than 64 MiB: it is left as it is"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo", "Obj1.xmo"));
}

TEST_F(RestoreSpoiled, SaysWhatItCannotDoAndTriesAgainAtTheNextStart) {
    files.Commit("Obj0.xmo", "");
    (void)history->Generations();  // the book is open
    {
        // No file can be written to its end.
        const oam::test::FileSizeLimit limit(10);
        const auto said = history->RestoreSpoiled();
        ASSERT_FALSE(said.empty());
        EXPECT_THAT(said[0], HasSubstr("\"Board 1\" cannot be put back: cannot write "));
    }
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo", "Obj1.xmo"));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), "");
    Reopen();
    EXPECT_EQ(history->RestoreSpoiled().size(), 1u);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), good);
}

TEST_F(RestoreSpoiled, RecordsHandEditsBesideWhatItPutsBack) {
    files.Commit("Obj0.xmo", "");
    home.WriteDataFile("Obj1.xmo", BoardFile("Board 2", {{"Number", "5"}}));
    (void)history->RestoreSpoiled();
    EXPECT_THAT(Entries({.limit = 2}),
                ElementsAre("4 service restore: Board 1", "3 (found at start) start: Board 2"));
}

}  // namespace oam::server::test
