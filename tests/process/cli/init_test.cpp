#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

class ToolInit : public ToolTest {
  protected:
    unsigned ModeOf(const std::string& relative) const {
        struct stat status {};
        EXPECT_EQ(stat(home.Path(relative).c_str(), &status), 0) << relative;
        return status.st_mode & 07777;
    }

    // What was done with each of the five directories.
    std::vector<std::string> Done(const Words& words) const {
        std::vector<std::string> done;
        const auto answer = Json(words);
        for (const auto& directory : answer["directories"]) done.push_back(directory["action"]);
        return done;
    }
};

const std::vector<std::string> kAllKept(5, "kept");

}  // namespace

TEST_F(ToolInit, MakesAllDirectoriesWithTheirParents) {
    EXPECT_EQ(Done({"--dir", "a/b", "init"}), std::vector<std::string>(5, "created"));
    for (const char* directory : {"a/b", "a/b/oam", "a/b/oam/cfg", "a/b/oam/log", "a/b/lib"})
        EXPECT_EQ(ModeOf(directory), 0755u) << directory;
}

TEST_F(ToolInit, DoesNothingTheSecondTime) {
    Out({"--dir", "a", "init"});
    EXPECT_EQ(Done({"--dir", "a", "init"}), kAllKept);
}

TEST_F(ToolInit, TheUmaskDoesNotMatter) {
    const mode_t before = umask(0077);
    Out({"--dir", "a", "init"});
    umask(before);
    EXPECT_EQ(ModeOf("a/oam/cfg"), 0755u);
}

TEST_F(ToolInit, LetsAGroupWrite) {
    Out({"--dir", "a", "init", "--group"});
    EXPECT_EQ(ModeOf("a/oam/log"), 0775u);
    EXPECT_EQ(Done({"--dir", "a", "init", "--group"}), kAllKept);
}

TEST_F(ToolInit, GivesTheDirectoriesToANamedGroup) {
    const group* mine = getgrgid(getgid());
    ASSERT_NE(mine, nullptr);
    Out({"--dir", "a", "init", "--group", mine->gr_name});
    EXPECT_EQ(ModeOf("a/lib"), 0775u);
    EXPECT_THAT(Run({"--dir", "a", "init", "--group", "no such group"}),
                Complains(1, "there is no group \"no such group\""));
}

TEST_F(ToolInit, RepairsModesThatKeepTheOwnerOut) {
    Out({"--dir", "a", "init"});
    ASSERT_EQ(chmod(home.Path("a/oam/log").c_str(), 01411), 0);
    ASSERT_EQ(chmod(home.Path("a/lib").c_str(), 0700), 0);
    EXPECT_EQ(Done({"--dir", "a", "init"}),
              (std::vector<std::string>{"kept", "kept", "kept", "repaired", "kept"}));
    EXPECT_EQ(ModeOf("a/oam/log"), 0755u);
    EXPECT_EQ(ModeOf("a/lib"), 0700u);
}

TEST_F(ToolInit, TellsWhatIsInItsWay) {
    home.Write("a", "");
    EXPECT_THAT(Run({"--dir", "a", "init"}), Complains(1, "is not a directory"));
    EXPECT_THAT(Run({"--dir", "a/b", "init"}), Complains(1, "cannot"));
}

TEST_F(ToolInit, RefusesAPathThatTheServiceCannotUse) {
    const std::string tooLong(108 - home.Root().size() - 1, 'd');
    const Finished run = Run({"--dir", tooLong, "init"});
    EXPECT_THAT(run, Complains(1, "is too long"));
    EXPECT_THAT(run.err, HasSubstr("at most 107 characters"));
    EXPECT_FALSE(home.Exists(tooLong));
    Out({"--dir", tooLong.substr(1), "init"});
    Out({"--dir", tooLong.substr(1), "objects"});
}

}  // namespace oam::test
