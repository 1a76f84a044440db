// Paths under the installation directory, at the limits of their buffers.
#include "base/path.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/text.h"
#include "doors/room_test.h"

namespace oam::test {
namespace {

class FullPath : public RoomTest {
  protected:
    char path[kPathSize] = "before";
};

TEST_F(FullPath, IsTheDirectoryAndTheRelativePath) {
    EXPECT_EQ(GetFullPath(false, "/oam/cfg/", path, sizeof path), OAM_SUCCESS);
    EXPECT_EQ(path, home.Root() + "/oam/cfg/");
}

TEST_F(FullPath, FitsWith127CharactersAndNotWith128) {
    home.MoveRootToLength(118);
    EXPECT_EQ(GetFullPath(false, "/oam/cfg/", path, sizeof path), OAM_SUCCESS);
    EXPECT_EQ(strlen(path), 127u);
    EXPECT_EQ(GetFullPath(false, "/oam/cfgs/", path, sizeof path), OAMERR_NOT_ENOUGH_MEMORY);
}

TEST_F(FullPath, FailsForADirectoryOf120CharactersWithTheConfiguration) {
    home.MoveRootToLength(120);
    EXPECT_EQ(GetFullPath(false, "/oam/cfg/", path, sizeof path), OAMERR_NOT_ENOUGH_MEMORY);
}

TEST_F(FullPath, FailsWhenTheDirectoryAloneDoesNotFit) {
    home.MoveRootToLength(128);
    EXPECT_EQ(GetFullPath(true, "", path, sizeof path), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(path, "before");
}

TEST(JoinedPath, PutsOneSlashBetweenADirectoryAndAName) {
    EXPECT_STREQ(JoinedPath("/a/cfg", "x.xmo").Get(), "/a/cfg/x.xmo");
    EXPECT_STREQ(JoinedPath("/a/cfg", "/aside").Get(), "/a/cfg/aside");
}

TEST(JoinedPath, HoldsTheLongestNamesBelowTheLongestDirectory) {
    const std::string directory(kPathSize - 1, 'd');
    const std::string names = std::string(NAME_MAX, 'a') + '/' + std::string(NAME_MAX, 'b');
    EXPECT_EQ(JoinedPath(directory.c_str(), names.c_str()).Get(), directory + '/' + names);
}

TEST(JoinedPath, ThatIsTooLongNamesNoFile) {
    const JoinedPath path("/tmp", std::string(2000, '/').c_str());
    EXPECT_STREQ(path.Get(), "");
    EXPECT_NE(access(path.Get(), F_OK), 0);
}

class PathDirs : public RoomTest {
  protected:
    PathDirs() { umask_ = umask(0); }
    ~PathDirs() override { umask(umask_); }

    mode_t ModeOf(const std::string& relative) const {
        struct stat status {};
        EXPECT_EQ(stat(home.Path(relative).c_str(), &status), 0) << relative;
        return status.st_mode & 07777;
    }

  private:
    mode_t umask_;
};

TEST_F(PathDirs, MakesEveryDirectoryButNotTheFile) {
    if (geteuid() != 0) GTEST_SKIP() << "a directory of mode 01411 cannot be entered to make more";
    std::string path = home.Path("a/b.c/d/startup.log");
    const std::string before = path;
    CreatePathDirs(path.data());
    EXPECT_EQ(path, before) << "the path is restored";
    EXPECT_TRUE(home.Exists("a/b.c/d"));
    EXPECT_FALSE(home.Exists("a/b.c/d/startup.log"));
}

TEST_F(PathDirs, KeptTheModeIsTheDecimalNumber777) {
    std::string path = home.Path("made/file");
    CreatePathDirs(path.data());
    EXPECT_EQ(ModeOf("made"), 01411u);
    umask(0111);
    path = home.Path("masked/");
    CreatePathDirs(path.data());
    EXPECT_EQ(ModeOf("masked"), 01400u);
}

TEST_F(PathDirs, LeavesWhatIsThereAlone) {
    const mode_t before = ModeOf("oam/log");
    std::string path = home.Path("oam/log/x");
    CreatePathDirs(path.data());
    EXPECT_EQ(ModeOf("oam/log"), before);
}

TEST_F(PathDirs, GoesOnBehindAPartThatCannotBeMade) {
    home.Write("oam/file", "");
    std::string path = home.Path("oam/file/below/x");
    const std::string before = path;
    CreatePathDirs(path.data());
    EXPECT_EQ(path, before);
    EXPECT_EQ(home.Read("oam/file"), "");
}

TEST(OutOfMeans, SaysNothingOfWhatIsThere) {
    for (const int error : {EMFILE, ENFILE, ENOMEM, EIO, EINTR}) EXPECT_TRUE(IsOutOfMeans(error));
    for (const int error : {ENOENT, ENOTDIR, EACCES}) EXPECT_FALSE(IsOutOfMeans(error));
}

}  // namespace
}  // namespace oam::test
