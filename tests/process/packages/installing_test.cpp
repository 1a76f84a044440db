// The packages as dpkg installs, upgrades and removes them, with their scripts, and the daemon at
// work as the user that they make for it.
#include <gmock/gmock.h>
#include <signal.h>

#include "installed_root.h"
#include "package_set.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

class InstalledHost : public ::testing::Test {
  protected:
    void SetUp() override {
        const std::string missing = InstalledRoot::Missing();
        if (!missing.empty()) GTEST_SKIP() << missing;
        system = std::make_unique<InstalledRoot>();
        std::vector<std::string> files;
        for (const auto& [package, file] : Packages()) files.push_back(file);
        system->Install(files);
    }

    // As its unit starts it.
    std::unique_ptr<ChildProcess> Serve() const {
        auto daemon = std::make_unique<ChildProcess>(
            system->Inside({"/usr/bin/setpriv", "--reuid=oam", "--regid=oam", "--init-groups",
                            "/usr/sbin/oamd", "--config", "/etc/oam/oamd.conf"}),
            "/");
        daemon->AwaitError("serves " OAM_PACKAGED_DIR);
        return daemon;
    }

    static void End(ChildProcess& daemon) {
        daemon.Signal(SIGTERM);
        const Finished end = daemon.Finish();
        EXPECT_EQ(end.status, 0) << end.err;
    }

    std::unique_ptr<InstalledRoot> system;
};

}  // namespace

TEST_F(InstalledHost, IsCompleteAndServedByADaemonThatIsNotRoot) {
    EXPECT_EQ(system->Shell("dpkg --audit"), "");
    for (const auto& [package, file] : Packages()) {
        EXPECT_EQ(system->Shell("dpkg-query --show --showformat='${Status}' " + package),
                  "install ok installed");
        EXPECT_EQ(system->Shell("dpkg --verify " + package), "") << package;
    }
    EXPECT_THAT(system->Shell("getent passwd oam"), HasSubstr(":" OAM_PACKAGED_DIR ":"));
    system->Shell("getent group oam-operators oam-admins");
    const std::string facts = "stat --format='%U:%G %a' " OAM_PACKAGED_DIR;
    EXPECT_EQ(system->Shell(facts + "/oam/cfg"), "oam:oam 750\n");
    EXPECT_EQ(system->Shell(facts + "/lib"), "root:root 755\n");

    system->Shell("cp /usr/lib/oam/sim.bpi " OAM_PACKAGED_DIR "/lib/");
    const auto daemon = Serve();
    EXPECT_THAT(system->Shell("oam host"), HasSubstr(OAM_VERSION));
    system->Shell("oam board add --all && oam board start 'Sim E1 left'");
    EXPECT_THAT(system->Shell("oam board list"), HasSubstr("Sim E1 left"));
    EXPECT_THAT(system->Shell("oam config history"), HasSubstr("root"));
    EXPECT_EQ(system->Shell("stat --format=%U " OAM_PACKAGED_DIR "/oam/oamd.db"), "oam\n");
    // The packaged roles let a stranger look, and no more.
    const std::string stranger = "setpriv --reuid=nobody --regid=nogroup --clear-groups ";
    EXPECT_THAT(system->Shell(stranger + "oam board list"), HasSubstr("Sim E1 left"));
    constexpr int kNotPermitted = 5;
    EXPECT_EQ(system->Run({"/bin/sh", "-c", stranger + "oam board start 'Sim E1 right'"}).status,
              kNotPermitted);
    End(*daemon);
}

TEST_F(InstalledHost, KeepsItsSettingsWhenItIsInstalledAgainAndItsDataWhenItIsRemoved) {
    system->Shell("echo 'user nobody viewer' >>/etc/oam/roles.conf");
    system->Shell("echo kept >" OAM_PACKAGED_DIR "/oam/cfg/kept");
    const auto packages = Packages();
    system->Install({packages.at("oamd")});
    EXPECT_THAT(system->Shell("cat /etc/oam/roles.conf"), HasSubstr("user nobody viewer"));

    system->Shell("dpkg --remove oamd");
    EXPECT_THAT(system->Shell("cat /etc/oam/roles.conf"), HasSubstr("user nobody viewer"));
    EXPECT_NE(system->Run({"/usr/bin/test", "-e", "/usr/sbin/oamd"}).status, 0);

    std::string all;
    for (const auto& [package, file] : packages) all += ' ' + package;
    system->Shell("dpkg --purge" + all);
    EXPECT_EQ(system->Shell("cat " OAM_PACKAGED_DIR "/oam/cfg/kept"), "kept\n");
    for (const auto& [package, file] : packages)
        for (const PackagedFile& one : FilesOf(file)) {
            if (one.IsDirectory()) continue;
            EXPECT_NE(system->Run({"/usr/bin/test", "-e", one.path}).status, 0) << one.path;
        }
}

}  // namespace oam::test
