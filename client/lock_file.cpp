#include "lock_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "failure.h"
#include "foreign_text.h"

namespace oam {
namespace {

constexpr const char* kLockFile = "/oam/oam.lock";
constexpr size_t kLineSize = 256;
constexpr auto kMoment = std::chrono::seconds(1);

LockHolder readHolder(int descriptor) {
    char line[kLineSize + 1];
    const ssize_t length = pread(descriptor, line, kLineSize, 0);
    line[length > 0 ? length : 0] = '\0';
    char* rest = line;
    const long pid = std::strtol(line, &rest, 10);
    if (pid <= 0 || *rest != ' ') return {};
    const std::string command(rest + 1, strcspn(rest + 1, "\n"));
    return {pid, command};
}

// The line of a holder that was killed is still there when somebody asks at that very moment.
bool isGone(const LockHolder& holder) {
    return holder.pid == 0 || (kill(static_cast<pid_t>(holder.pid), 0) != 0 && errno == ESRCH);
}

void writeHolder(int descriptor, const std::string& command) {
    std::string line = std::to_string(getpid()) + ' ' + command;
    for (char& c : line)
        if (IsControl(c)) c = ' ';
    line.resize(std::min(line.size(), kLineSize - 1));
    line += '\n';
    // A line that cannot be written leaves a holder without a name; the lock itself stands.
    if (ftruncate(descriptor, 0) == 0) (void)!pwrite(descriptor, line.data(), line.size(), 0);
}

// True when the lock was free; throws when it can neither be had nor refused.
bool tryLock(int descriptor, int how, const std::string& path) {
    while (flock(descriptor, how | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) return false;
        if (errno != EINTR)
            throw Failure("cannot lock " + Quoted(path) + ": " + std::strerror(errno));
    }
    return true;
}

}  // namespace

std::string LockHolder::Text() const {
    if (pid == 0) return "another process";
    return "process " + std::to_string(pid) + " (" + Shown(command) + ")";
}

LockFile::LockFile(const Installation& place, const std::string& command) {
    const std::string path = place.Path(kLockFile);
    descriptor_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0664);
    if (descriptor_ < 0)
        throw Failure("cannot open the lock file " + Quoted(path) + ": " + std::strerror(errno),
                      "run as the installation's owner or group");
    try {
        const auto patience = std::chrono::steady_clock::now() + kMoment;
        while (!tryLock(descriptor_, LOCK_EX, path)) {
            const LockHolder holder = readHolder(descriptor_);
            if (!isGone(holder) || std::chrono::steady_clock::now() >= patience)
                throw Failure(Quoted(place.Directory()) + " is in use by " + holder.Text(),
                              "wait until it has ended, or end it, and try again");
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    } catch (...) {
        close(descriptor_);
        throw;
    }
    writeHolder(descriptor_, command);
}

LockFile::~LockFile() {
    // Without its line the lock lasts but the moment until it is closed.
    (void)!ftruncate(descriptor_, 0);
    close(descriptor_);
}

std::optional<LockHolder> LockFile::Holder(const Installation& place) {
    const std::string path = place.Path(kLockFile);
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (descriptor < 0) return std::nullopt;
    std::optional<LockHolder> holder;
    try {
        if (!tryLock(descriptor, LOCK_SH, path)) holder = readHolder(descriptor);
    } catch (const Failure&) {
        // A file system without locks: nobody can hold one.
    }
    close(descriptor);
    return holder;
}

}  // namespace oam
