// The packaged programs at work, from a root that is nowhere near the build.
#include <gmock/gmock.h>
#include <signal.h>

#include <fstream>

#include "child_process.h"
#include "package_set.h"
#include "support/installation.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class PackagedHost : public ::testing::Test {
  protected:
    PackagedHost() {
        std::filesystem::copy_file(root.Path("/usr/lib/oam/sim.bpi"), home.Path("lib/sim.bpi"));
    }

    std::string Tool(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), root.Path("/usr/bin/oam"));
        return OutputOf(arguments);
    }

    static std::string MappedBy(pid_t process) {
        std::ifstream file("/proc/" + std::to_string(process) + "/maps");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const UnpackedRoot root;
    const Installation home;
};

}  // namespace

TEST_F(PackagedHost, IsServedByTheDaemonAndLookedAfterByTheTool) {
    ChildProcess daemon({root.Path("/usr/sbin/oamd")}, home.Root());
    daemon.AwaitError("serves ");
    EXPECT_THAT(Tool({"host"}), HasSubstr(OAM_VERSION));
    Tool({"board", "add", "--all"});
    EXPECT_THAT(Tool({"board", "list"}), HasSubstr("Sim E1 left"));
    Tool({"board", "start", "Sim E1 left"});
    EXPECT_THAT(Tool({"monitor", "--after", "0", "--for", "1"}),
                HasSubstr("OAMEVN_STARTBOARD_DONE"));
    EXPECT_THAT(Tool({"shadow"}), HasSubstr("Sim E1 right"));
    EXPECT_THAT(OutputOf({root.Path("/usr/bin/oam-shadow"), "list"}), HasSubstr("Sim E1 right"));

    const std::string mapped = MappedBy(daemon.Pid());
    EXPECT_THAT(mapped, HasSubstr(root.Path("/usr/lib/liboamsuper.so")));
    EXPECT_THAT(mapped, HasSubstr(root.Path("/usr/lib/libkorcore.so")));
    EXPECT_THAT(mapped, Not(HasSubstr(OAM_BUILD)));

    daemon.Signal(SIGTERM);
    EXPECT_EQ(daemon.Finish().status, 0);
}

TEST_F(PackagedHost, IsLookedAfterWithoutADaemon) {
    Tool({"board", "add", "--all"});
    EXPECT_THAT(Tool({"board", "list"}), HasSubstr("Sim E1 left"));
}

TEST_F(PackagedHost, TakesThePackagedSettings) {
    ChildProcess daemon({root.Path("/usr/sbin/oamd"), "--config", root.Path("/etc/oam/oamd.conf"),
                         "--roles", root.Path("/etc/oam/roles.conf")},
                        home.Root());
    daemon.AwaitError("serves ");
    EXPECT_THAT(root.Read("/etc/oam/oamd.conf"), HasSubstr("roles = \"/etc/oam/roles.conf\"\n"));
    daemon.Signal(SIGTERM);
    const Finished end = daemon.Finish();
    EXPECT_EQ(end.status, 0) << end.err;
}

TEST_F(PackagedHost, HasAJudgeForItsPlugIns) {
    EXPECT_THAT(OutputOf({root.Path("/usr/bin/oam-plugin-check"), "--rules"}), HasSubstr("error"));
}

}  // namespace oam::test
