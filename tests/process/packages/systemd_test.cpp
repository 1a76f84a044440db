// The units and what goes with them, as systemd's own programs judge them.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdlib>

#include "package_set.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

constexpr const char* kService = "/usr/lib/systemd/system/oamd.service";
constexpr const char* kAgent = "/usr/lib/systemd/system/oam-fleetd.service";
constexpr const char* kSocket = "/usr/lib/systemd/system/oamd.socket";

#define OAM_NEEDS(program) \
    if (!HasProgram(program)) GTEST_SKIP() << "no " program " here"

}  // namespace

TEST(Units, AreWithinTheExposureThatIsPromised) {
    OAM_NEEDS("systemd-analyze");
    const UnpackedRoot root;
    for (const char* const unit : {kService, kAgent}) {
        const std::string text = OutputOf({"systemd-analyze", "security", "--offline=true",
                                           "--no-pager", "--threshold=30", root.Path(unit)});
        const size_t at = text.find("exposure level for ");
        ASSERT_NE(at, std::string::npos) << text;
        EXPECT_LE(std::atof(text.c_str() + text.find(": ", at) + 2), 3.0) << text;
    }
}

TEST(Units, NameThePackagedFiles) {
    const UnpackedRoot root;
    EXPECT_THAT(root.Read(kService),
                HasSubstr("\nExecStart=/usr/sbin/oamd --config /etc/oam/oamd.conf\n"));
    EXPECT_THAT(root.Read(kAgent),
                HasSubstr("\nExecStart=/usr/sbin/oam-fleetd --config /etc/oam/fleetd.conf\n"));
    EXPECT_THAT(root.Read(kSocket),
                HasSubstr("\nListenStream=" OAM_PACKAGED_DIR "/oam/oamd.sock\n"));
    EXPECT_THAT(root.Read(kService), HasSubstr("\nReadWritePaths=" OAM_PACKAGED_DIR "/oam\n"));
}

TEST(Units, AreUnderstood) {
    OAM_NEEDS("systemd-analyze");
    const UnpackedRoot root;
    // The one program in them that is the system's.
    std::filesystem::create_directory(root.Path("/bin"));
    std::filesystem::copy("/bin/kill", root.Path("/bin/kill"));
    const std::string told =
        OutputOf({"systemd-analyze", "verify", "--man=no", "--recursive-errors=no",
                  "--root=" + root.Path(""), kService, kSocket, kAgent});
    EXPECT_EQ(told, "");
}

TEST(Units, HaveAUserGroupsAndDirectories) {
    OAM_NEEDS("systemd-sysusers");
    OAM_NEEDS("systemd-tmpfiles");
    if (geteuid() != 0) GTEST_SKIP() << "users are root's to make";
    const UnpackedRoot root;
    OutputOf({"systemd-sysusers", "--root=" + root.Path(""), "oamd.conf"});
    EXPECT_THAT(root.Read("/etc/passwd"), HasSubstr("oam:x:"));
    EXPECT_THAT(root.Read("/etc/group"), HasSubstr("oam-operators:x:"));
    OutputOf({"systemd-tmpfiles", "--root=" + root.Path(""), "--create", "oamd.conf"});
    const std::string directory = OAM_PACKAGED_DIR;
    struct stat facts {};
    ASSERT_EQ(stat(root.Path(directory + "/lib").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_uid, 0u);
    ASSERT_EQ(stat(root.Path(directory + "/oam/cfg").c_str(), &facts), 0);
    EXPECT_NE(facts.st_uid, 0u);
    EXPECT_EQ(facts.st_mode & 07777, 0750u);
}

}  // namespace oam::test
