#include "installed_root.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>

#include "package_set.h"

namespace oam::test {
namespace {

namespace fs = std::filesystem;

// What the layer hides of the system is there again, but for what a service could leave behind. The
// index of all manual pages is not made anew for every package.
constexpr const char* kMounts = R"(
mount -t overlay overlay -o lowerdir=/,upperdir=upper,workdir=work root &&
mount -t proc proc root/proc && mount --rbind /dev root/dev && mount -t tmpfs tmpfs root/dev/shm &&
mount -t tmpfs tmpfs root/run && mount -t tmpfs tmpfs root/tmp && mkdir root/tmp/packages &&
mount --bind "$1" root/tmp/packages &&
rm -f root/var/lib/man-db/auto-update && echo mounted && exec sleep infinity
)";

}  // namespace

std::string InstalledRoot::Missing() {
    if (geteuid() != 0) return "installing packages takes root";
    for (const char* program : {"unshare", "nsenter", "dpkg", "systemd-sysusers"})
        if (!HasProgram(program)) return std::string("no ") + program + " here";
    char name[] = "/tmp/oamovlXXXXXX";
    const fs::path directory = mkdtemp(name);
    for (const char* part : {"upper", "work", "root"}) fs::create_directory(directory / part);
    const Finished tried =
        ChildProcess({"/usr/bin/unshare", "--mount", "/bin/sh", "-c",
                      "mount -t overlay overlay -o lowerdir=/,upperdir=upper,workdir=work root"},
                     directory)
            .Finish();
    fs::remove_all(directory);
    return tried.status == 0 ? "" : "nothing can be laid over the root here: " + tried.err;
}

InstalledRoot::InstalledRoot() {
    char name[] = "/tmp/oamovlXXXXXX";
    directory_ = mkdtemp(name);
    for (const char* part : {"/upper", "/work", "/root"}) fs::create_directory(directory_ + part);
    holder_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{"/usr/bin/unshare", "--mount", "/bin/sh", "-c", kMounts, "sh",
                                 OAM_PACKAGES},
        directory_);
    holder_->AwaitOutput("mounted\n");
}

InstalledRoot::~InstalledRoot() {
    holder_->Signal(SIGKILL);
    (void)holder_->Finish();
    fs::remove_all(directory_);
}

std::vector<std::string> InstalledRoot::Inside(const std::vector<std::string>& command) const {
    std::vector<std::string> words{
        "/usr/bin/nsenter", "--target",         std::to_string(holder_->Pid()),
        "--mount",          "/usr/sbin/chroot", directory_ + "/root"};
    words.insert(words.end(), command.begin(), command.end());
    return words;
}

Finished InstalledRoot::Run(const std::vector<std::string>& command) const {
    return ChildProcess(Inside(command), "/").Finish();
}

std::string InstalledRoot::Shell(const std::string& line) const {
    const Finished run = Run({"/bin/sh", "-c", line});
    EXPECT_EQ(run.status, 0) << line << '\n' << run.out << run.err;
    return run.out;
}

void InstalledRoot::Install(const std::vector<std::string>& files) const {
    std::string line = "dpkg --install";
    for (const std::string& file : files)
        line += " /tmp/packages/" + fs::path(file).filename().string();
    Shell(line);
}

}  // namespace oam::test
