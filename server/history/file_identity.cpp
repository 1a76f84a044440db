#include "history/file_identity.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "failure.h"

namespace oam::server {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
// Longer than a tick of the clock that file systems take their stamps from, which is 10 ms at most;
// stamps of whole seconds are those of file systems that know no more, at worst two seconds.
constexpr std::int64_t kFineTick = kSecond / 10;
constexpr std::int64_t kCoarseTick = 2 * kSecond;

std::int64_t nanoseconds(const timespec& time) { return time.tv_sec * kSecond + time.tv_nsec; }

bool isOld(std::int64_t stamp, std::int64_t now) {
    return stamp + (stamp % kSecond == 0 ? kCoarseTick : kFineTick) < now;
}

}  // namespace

timespec Now() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now;
}

FileIdentity::Facts FileIdentity::FactsOf(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim),
            nanoseconds(status.st_ctim)};
}

std::optional<FileIdentity> FileIdentity::Of(const std::string& path) {
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
        throw Failure("cannot look at " + Quoted(path) + ": " + std::strerror(errno));
    }
    FileIdentity identity;
    identity.own_ = FactsOf(status);
    identity.isRegular_ = S_ISREG(status.st_mode);
    if (S_ISLNK(status.st_mode) && stat(path.c_str(), &status) == 0)
        identity.target_ = FactsOf(status);
    return identity;
}

bool FileIdentity::IsSettled(const timespec& now) const {
    for (const Facts& facts : {own_, target_})
        if (!isOld(std::max(facts.modified, facts.changed), nanoseconds(now))) return false;
    return true;
}

// Without what file systems forget, or number anew, when they are mounted again.
std::string FileIdentity::Text() const {
    return std::to_string(own_.inode) + ' ' + std::to_string(own_.size) + ' ' +
           std::to_string(own_.modified / kSecond);
}

}  // namespace oam::server
