#include "durable_file.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <utility>

#include "base/path.h"

namespace {

constexpr mode_t kNewFileMode = 0666;  // the process's umask applies
constexpr mode_t kPermissions = 07777;

// 0, or what errno says.
int createLike(const char* path, const struct stat* existing) noexcept {
    const int descriptor =
        open(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, kNewFileMode);
    if (descriptor < 0) return errno;
    if (existing != nullptr) {
        // Best effort: a file that its owner opened to others stays so.
        (void)fchmod(descriptor, existing->st_mode & kPermissions);
        [[maybe_unused]] const int owned = fchown(descriptor, existing->st_uid, existing->st_gid);
    }
    close(descriptor);
    return 0;
}

// The directory or the name allows no file beside. Any other failure (a full disk, too many open
// files) would spoil the old file too if it were written in place.
bool forbidsBeside(int error) noexcept {
    return error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG;
}

}  // namespace

oam_result DurableFile::Begin(const char* path) noexcept {
    path_ = path;
    struct stat status;
    const bool exists = lstat(path, &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) return OAM_SUCCESS;
    oam::OwnedText beside;
    if (!beside.Join(path, kBesideSuffix)) return OAMERR_NOT_ENOUGH_MEMORY;
    const int error = createLike(beside.Get(), exists ? &status : nullptr);
    if (error == 0) {
        beside_ = std::move(beside);
        return OAM_SUCCESS;
    }
    return forbidsBeside(error) ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
}

bool isWrittenInPlace(const char* path) noexcept {
    struct stat status;
    return lstat(path, &status) == 0 && !S_ISREG(status.st_mode);
}

oam_result DurableFile::Finish(oam_result written) noexcept {
    if (!IsBeside()) return written;
    if (written == OAM_SUCCESS) OpenPlace();
    if (auto failed = PutInPlace(written)) return failed;
    return SyncPlace() ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
}

oam_result DurableFile::PutInPlace(oam_result written) noexcept {
    if (!IsBeside()) return written;
    const bool isOpen = !place_ || place_->IsOpen();
    if (written == OAM_SUCCESS && isOpen && rename(beside_.Get(), path_) == 0) {
        (void)beside_.Assign(nullptr);
        return OAM_SUCCESS;
    }
    GiveUp();
    return written != OAM_SUCCESS ? written : OAMERR_FILE_WRITE_ERROR;
}

void DurableFile::GiveUp() noexcept {
    if (!IsBeside()) return;
    (void)remove(beside_.Get());
    (void)beside_.Assign(nullptr);
}

ContainingDirectory::ContainingDirectory(const char* path) noexcept {
    char directory[PATH_MAX] = ".";
    if (const char* slash = strrchr(path, '/')) {
        // The root keeps its slash.
        const size_t length = slash == path ? 1 : static_cast<size_t>(slash - path);
        if (length >= sizeof directory) return;
        memcpy(directory, path, length);
        directory[length] = '\0';
    }
    descriptor_ = open(directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // Writable but not readable: there is nothing to sync by.
    isOpen_ = descriptor_ >= 0 || errno == EACCES;
}

ContainingDirectory::~ContainingDirectory() {
    if (descriptor_ >= 0) close(descriptor_);
}

bool ContainingDirectory::Sync() const noexcept {
    if (descriptor_ < 0) return isOpen_;
    // Some file systems cannot sync a directory and keep names in order by themselves.
    return fsync(descriptor_) == 0 || errno == EINVAL;
}

bool renameDurably(const char* from, const char* to) noexcept {
    const ContainingDirectory directory(to);
    return directory.IsOpen() && rename(from, to) == 0 && directory.Sync();
}

bool syncFileAndName(const char* path) noexcept {
    const int descriptor = open(path, O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool synced = fsync(descriptor) == 0;
    close(descriptor);
    return synced && ContainingDirectory(path).Sync();
}

bool syncAll(const char* directory) noexcept {
    const int descriptor = open(directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return false;
    // The second for file systems that do not count the names of a directory as written.
    const bool synced = syncfs(descriptor) == 0 && (fsync(descriptor) == 0 || errno == EINVAL);
    close(descriptor);
    return synced;
}

void syncDataDirectory() noexcept {
    char inside[oam::kPathSize];
    if (GetFullPath(false, "/oam/cfg/", inside, sizeof inside) != OAM_SUCCESS) return;
    (void)ContainingDirectory(inside).Sync();
}
