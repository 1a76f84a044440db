#include "history/replaced_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "failure.h"

namespace oam::server {
namespace {

constexpr mode_t kNewFileMode = 0666;  // the process's umask applies
constexpr mode_t kPermissions = 07777;

[[noreturn]] void fail(const std::string& path) {
    const int reason = errno;
    throw Failure("cannot write " + Quoted(path) + ": " + std::strerror(reason));
}

class Descriptor {
  public:
    Descriptor(const std::string& path, int flags)
        : number_(open(path.c_str(), flags | O_CLOEXEC, kNewFileMode)) {
        if (number_ < 0) fail(path);
    }
    ~Descriptor() { close(number_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return number_; }

  private:
    const int number_;
};

std::string directoryOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

void syncDirectoryOf(const std::string& path) {
    const Descriptor directory(directoryOf(path), O_RDONLY | O_DIRECTORY);
    // Some file systems cannot sync a directory and keep names in order by themselves.
    if (fsync(directory.Number()) != 0 && errno != EINVAL) fail(path);
}

void write(const std::string& path, std::string_view bytes, const std::string& like) {
    const Descriptor file(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
    struct stat status;
    if (lstat(like.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        // Best effort: a file that its owner opened to others stays so.
        if (fchown(file.Number(), status.st_uid, status.st_gid) != 0) errno = 0;
        (void)fchmod(file.Number(), status.st_mode & kPermissions);
    }
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.Number(), bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) fail(path);
        if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    if (fsync(file.Number()) != 0) fail(path);
}

bool exists(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

}  // namespace

NewFile::NewFile(const std::string& beside, std::string_view bytes, const std::string& like)
    : beside_(beside) {
    try {
        write(beside, bytes, like);
    } catch (const Failure&) {
        (void)unlink(beside.c_str());
        throw;
    }
}

NewFile::~NewFile() {
    if (!wasMoved_) (void)unlink(beside_.c_str());
}

void NewFile::MoveTo(const std::string& path) {
    if (std::rename(beside_.c_str(), path.c_str()) != 0) fail(path);
    wasMoved_ = true;
    syncDirectoryOf(path);
}

std::string SetSpoiledAside(const std::string& path, const std::string& target) {
    for (unsigned n = 1;; ++n) {
        std::string name = target + ".spoiled-" + std::to_string(n);
        if (exists(name)) continue;
        if (link(path.c_str(), name.c_str()) != 0) {
            if (errno == EEXIST) continue;
            // A directory, or a file system without links.
            if (std::rename(path.c_str(), name.c_str()) != 0) fail(name);
        }
        syncDirectoryOf(name);
        return name;
    }
}

}  // namespace oam::server
