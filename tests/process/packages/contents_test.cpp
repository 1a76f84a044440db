// What is in the packages: every installed file once, with the right owner and mode.
#include <gmock/gmock.h>
#include <stdlib.h>

#include <set>

#include "child_process.h"
#include "package_set.h"

namespace oam::test {
namespace {

namespace fs = std::filesystem;

// The last one stands beside the samples that it belongs to, as their keeper is to copy them all.
bool isProgram(const std::string& path) {
    return path.starts_with("/usr/bin/") || path.starts_with("/usr/sbin/") ||
           path == "/usr/share/doc/oam-fleet/examples/oam-fleet-rights";
}

}  // namespace

TEST(Packages, AreSeven) {
    std::set<std::string> names;
    for (const auto& [name, file] : Packages()) names.insert(name);
    EXPECT_THAT(names, ::testing::UnorderedElementsAre("liboamsuper", "liboamsuper-dev", "oamd",
                                                       "oam", "oam-console", "oam-fleet", "oam-sdk"));
}

TEST(Packages, HoldEveryInstalledFileOnce) {
    char name[] = "/tmp/oaminstXXXXXX";
    const std::string root = mkdtemp(name);
    setenv("DESTDIR", root.c_str(), 1);
    OutputOf({OAM_CMAKE, "--install", OAM_BUILD, "--prefix", "/usr"});
    unsetenv("DESTDIR");
    std::set<std::string> installed;
    for (const auto& entry : fs::recursive_directory_iterator(root))
        if (!entry.is_directory()) installed.insert(entry.path().string().substr(root.size()));
    fs::remove_all(root);
    EXPECT_GT(installed.size(), 30u);

    std::map<std::string, std::string> owners;
    for (const auto& [package, file] : Packages())
        for (const PackagedFile& one : FilesOf(file)) {
            if (one.IsDirectory()) continue;
            EXPECT_TRUE(owners.emplace(one.path, package).second)
                << one.path << " is in " << package << " and " << owners[one.path];
            EXPECT_TRUE(installed.erase(one.path)) << one.path << " is not installed by hand";
        }
    EXPECT_THAT(installed, ::testing::IsEmpty()) << "in no package";
}

TEST(Packages, GiveFilesToRootAndProgramsAloneAreExecutable) {
    for (const auto& [package, file] : Packages())
        for (const PackagedFile& one : FilesOf(file)) {
            EXPECT_EQ(one.owner, "root/root") << one.path;
            if (one.IsDirectory())
                EXPECT_EQ(one.mode, "drwxr-xr-x") << one.path;
            else if (isProgram(one.path))
                EXPECT_EQ(one.mode, "-rwxr-xr-x") << one.path;
            else
                EXPECT_EQ(one.mode, "-rw-r--r--") << one.path;
        }
}

TEST(Packages, LayNothingOutsideOfTheSystemsPlaces) {
    for (const auto& [package, file] : Packages())
        for (const PackagedFile& one : FilesOf(file))
            EXPECT_TRUE(one.path == "/usr" || one.path == "/etc" || one.path.starts_with("/usr/") ||
                        one.path.starts_with("/etc/oam") || one.path.starts_with("/etc/pam.d"))
                << one.path;
}

TEST(Packages, NameEveryFileBelowEtcAsSettingsToKeep) {
    for (const auto& [package, file] : Packages()) {
        std::set<std::string> below;
        for (const PackagedFile& one : FilesOf(file))
            if (!one.IsDirectory() && one.path.starts_with("/etc/")) below.insert(one.path);
        if (below.empty()) continue;
        const auto kept = LinesOf(OutputOf({"dpkg-deb", "-I", file, "conffiles"}));
        EXPECT_EQ(std::set<std::string>(kept.begin(), kept.end()), below) << package;
    }
}

TEST(Packages, HaveScriptsThatTheShellUnderstands) {
    for (const char* const package : {"oamd", "oam-fleet"})
        for (const char* const script : {"postinst", "prerm", "postrm"}) {
            const std::string text = OutputOf({"dpkg-deb", "-I", Packages().at(package), script});
            EXPECT_THAT(text, ::testing::StartsWith("#!/bin/sh\n"));
            EXPECT_EQ(ChildProcess({"/bin/sh", "-n", "-c", text}, "/").Finish().status, 0)
                << package << ' ' << script;
        }
}

TEST(Packages, NameNoPlaceOfTheMachineThatMadeThem) {
    const UnpackedRoot root;
    for (const auto& [package, file] : Packages())
        for (const PackagedFile& one : FilesOf(file)) {
            if (one.IsDirectory()) continue;
            const std::string content = root.Read(one.path);
            if (content.starts_with("\x7f"
                                    "ELF"))
                continue;
            EXPECT_EQ(content.find(OAM_BUILD), std::string::npos) << one.path;
        }
}

}  // namespace oam::test
