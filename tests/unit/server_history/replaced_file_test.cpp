#include "history/replaced_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "failure.h"
#include "support/file_limit.h"
#include "support/installation.h"

namespace oam::server::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ReplacedFile : public ::testing::Test {
  protected:
    ReplacedFile() { home.MakeDirectory("d"); }
    std::string Path(const std::string& name) const { return home.Path("d/" + name); }
    std::vector<std::string> Names() const { return home.List("d"); }

    oam::test::Installation home;
};

mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

}  // namespace

TEST_F(ReplacedFile, TakesThePlaceOfAnother) {
    home.Write("d/a", "old");
    {
        NewFile file(Path("a.saving"), "new", {});
        EXPECT_EQ(home.Read("d/a"), "old");
        EXPECT_EQ(home.Read("d/a.saving"), "new");
        file.MoveTo(Path("a"));
    }
    EXPECT_EQ(home.Read("d/a"), "new");
    EXPECT_THAT(Names(), ElementsAre("a"));
}

TEST_F(ReplacedFile, IsAsMuchForOthersAsTheOneBefore) {
    home.Write("d/a", "old");
    ASSERT_EQ(chmod(Path("a").c_str(), 0604), 0);
    NewFile(Path("a.saving"), "new", Path("a")).MoveTo(Path("a"));
    EXPECT_EQ(modeOf(Path("a")), 0604u);
    fs::create_symlink("nowhere", Path("link"));
    const mode_t mask = umask(027);
    NewFile(Path("b.saving"), "new", Path("link")).MoveTo(Path("b"));
    umask(mask);
    EXPECT_EQ(modeOf(Path("b")), 0640u);
}

TEST_F(ReplacedFile, LeavesNothingWhenItIsNotMoved) {
    { const NewFile file(Path("a.saving"), "new", {}); }
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(ReplacedFile, LeavesNothingWhenItCannotBeWritten) {
    home.Write("d/a", "old");
    {
        const oam::test::FileSizeLimit limit(10);
        EXPECT_THROW(NewFile(Path("a.saving"), std::string(100, 'x'), Path("a")), Failure);
    }
    EXPECT_THAT(Names(), ElementsAre("a"));
    EXPECT_THROW(NewFile(Path("no/a.saving"), "new", {}), Failure);
    home.MakeDirectory("d/dir");
    EXPECT_THROW(NewFile(Path("a.saving"), "new", {}).MoveTo(Path("dir")), Failure);
    EXPECT_THAT(Names(), ElementsAre("a", "dir"));
}

TEST_F(ReplacedFile, IsNotWrittenThroughALink) {
    home.Write("d/other", "other");
    fs::create_symlink("other", Path("a.saving"));
    EXPECT_THROW(NewFile(Path("a.saving"), "new", {}), Failure);
    EXPECT_EQ(home.Read("d/other"), "other");
}

TEST_F(ReplacedFile, IsKeptUnderTheFirstFreeName) {
    home.Write("d/a", "one");
    home.Write("d/a.spoiled-1", "older");
    EXPECT_EQ(SetSpoiledAside(Path("a"), Path("a")), Path("a.spoiled-2"));
    EXPECT_EQ(home.Read("d/a.spoiled-1"), "older");
    EXPECT_EQ(home.Read("d/a.spoiled-2"), "one");
    // A second name until it is replaced.
    EXPECT_EQ(home.Read("d/a"), "one");
}

TEST_F(ReplacedFile, IsKeptWhateverItIs) {
    home.MakeDirectory("d/dir");
    home.Write("d/dir/inside", "x");
    EXPECT_EQ(SetSpoiledAside(Path("dir"), Path("dir")), Path("dir.spoiled-1"));
    EXPECT_EQ(home.Read("d/dir.spoiled-1/inside"), "x");
    fs::create_symlink("nowhere", Path("link"));
    EXPECT_EQ(SetSpoiledAside(Path("link"), Path("link")), Path("link.spoiled-1"));
    EXPECT_EQ(fs::read_symlink(Path("link.spoiled-1")), "nowhere");
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(SetSpoiledAside(Path("pipe"), Path("pipe")), Path("pipe.spoiled-1"));
    EXPECT_THROW(SetSpoiledAside(Path("missing"), Path("missing")), Failure);
}

TEST_F(ReplacedFile, IsKeptInAnotherDirectory) {
    home.MakeDirectory("d/sub");
    home.Write("d/sub/a", "one");
    EXPECT_EQ(SetSpoiledAside(Path("sub/a"), Path("a")), Path("a.spoiled-1"));
    EXPECT_EQ(home.Read("d/a.spoiled-1"), "one");
}

}  // namespace oam::server::test
