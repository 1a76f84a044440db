#include "directory_maker.h"

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "failure.h"

namespace oam {
namespace {

constexpr mode_t kOwnerMode = 0755;
constexpr mode_t kGroupMode = 0775;
constexpr gid_t kSameGroup = static_cast<gid_t>(-1);

gid_t groupOf(const std::string& name) {
    if (name.empty()) return kSameGroup;
    const group* entry = getgrnam(name.c_str());
    if (!entry) throw Failure("there is no group " + Quoted(name));
    return entry->gr_gid;
}

[[noreturn]] void fail(const char* what, const std::string& path) {
    const std::string reason = std::strerror(errno);
    throw Failure(std::string("cannot ") + what + ' ' + Quoted(path) + ": " + reason,
                  "run as a user who may, for example as root");
}

class Maker {
  public:
    explicit Maker(const DirectoryPlan& plan)
        : mode_(plan.forGroup ? kGroupMode : kOwnerMode),
          needed_(plan.forGroup ? 0770 : 0700),
          group_(groupOf(plan.group)) {}

    MadeDirectory Make(const std::string& path) {
        struct stat status;
        if (stat(path.c_str(), &status) != 0) {
            if (errno != ENOENT) fail("look at", path);
            return Create(path);
        }
        if (!S_ISDIR(status.st_mode))
            throw Failure(Quoted(path) + " is not a directory", "move it away and try again");
        const mode_t mode = status.st_mode & 07777;
        const bool isUsable = (mode & needed_) == needed_;
        const bool isInGroup = group_ == kSameGroup || status.st_gid == group_;
        if (isUsable && isInGroup) return {path, "kept", mode};
        SetUp(path, isUsable ? mode : mode_);
        return {path, "repaired", isUsable ? mode : mode_};
    }

  private:
    MadeDirectory Create(const std::string& path) {
        std::error_code error;
        const auto parent = std::filesystem::path(path).parent_path();
        if (!parent.empty()) std::filesystem::create_directories(parent, error);
        if (error) {
            errno = error.value();
            fail("create", parent);
        }
        if (mkdir(path.c_str(), 0700) != 0) fail("create", path);
        SetUp(path, mode_);
        return {path, "created", mode_};
    }

    // The mode comes second: a change of group clears bits of it.
    void SetUp(const std::string& path, mode_t mode) {
        if (group_ != kSameGroup && chown(path.c_str(), static_cast<uid_t>(-1), group_) != 0)
            fail("give to the group", path);
        if (chmod(path.c_str(), mode) != 0) fail("set the mode of", path);
    }

    mode_t mode_;
    mode_t needed_;
    gid_t group_;
};

}  // namespace

std::vector<MadeDirectory> MakeDirectories(const std::vector<std::string>& paths,
                                           const DirectoryPlan& plan) {
    Maker maker(plan);
    std::vector<MadeDirectory> made;
    for (const std::string& path : paths) made.push_back(maker.Make(path));
    return made;
}

}  // namespace oam
