#include "installation.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "failure.h"
#include "zol/zol.h"

namespace oam {
namespace {

std::string initCommand(const std::string& directory) {
    return "run `oam --dir '" + directory + "' init`";
}

}  // namespace

Installation Installation::Locate(const std::optional<std::string>& directory) {
    if (directory) {
        if (directory->empty()) throw UsageError("--dir needs the name of a directory");
        const auto absolute = std::filesystem::absolute(*directory).lexically_normal();
        setenv("KOR_DIR", absolute.c_str(), 1);
    }
    char located[PATH_MAX];
    if (zolGetKorDir(false, located, sizeof located) != 0)
        throw Failure("the installation directory's path is too long");
    return Installation(located);
}

std::string Installation::Path(std::string_view relative) const {
    return directory_ + std::string(relative);
}

void Installation::RequireReady(int access) const {
    if (Path(kStartupLog).size() >= kPathSize)
        throw Failure("the path of " + Quoted(Directory()) + " is too long",
                      "it must not be longer than " +
                          std::to_string(kPathSize - 1 - std::strlen(kStartupLog)) +
                          " characters: move the installation, or reach it through a link");
    for (const char* needed : {kConfigDirectory, kLogDirectory}) {
        const std::string path = Path(needed);
        struct stat status;
        if (stat(path.c_str(), &status) != 0)
            throw Failure(Quoted(Directory()) + " is not an installation: " + Quoted(path) + ": " +
                              std::strerror(errno),
                          initCommand(Directory()) + ", or name another directory with --dir");
        if (!S_ISDIR(status.st_mode))
            throw Failure(Quoted(path) + " is not a directory",
                          "move it away, then " + initCommand(Directory()));
        if (::access(path.c_str(), access) != 0)
            throw Failure("no access to " + Quoted(path) + ": " + std::strerror(errno),
                          "run as the directory's owner or group; `oam init` repairs the mode");
    }
}

}  // namespace oam
