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

// As its owner left it to others. Best effort, and nearly always so already; then the file system
// need not note a change.
void takeAfter(int descriptor, const struct stat& existing) noexcept {
    struct stat made;
    if (fstat(descriptor, &made) != 0) return;
    if (((made.st_mode ^ existing.st_mode) & kPermissions) != 0) {
        (void)fchmod(descriptor, existing.st_mode & kPermissions);
    }
    if (made.st_uid != existing.st_uid || made.st_gid != existing.st_gid) {
        [[maybe_unused]] const int owned = fchown(descriptor, existing.st_uid, existing.st_gid);
    }
}

// The descriptor, or -1 and errno.
int createLike(const char* path, const struct stat* existing) noexcept {
    const int descriptor =
        open(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, kNewFileMode);
    if (descriptor >= 0 && existing != nullptr) takeAfter(descriptor, *existing);
    return descriptor;
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
    descriptor_ = createLike(beside.Get(), exists ? &status : nullptr);
    if (descriptor_ < 0) return forbidsBeside(errno) ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
    beside_ = std::move(beside);
    return OAM_SUCCESS;
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
    CloseBeside();
    const bool isOpen = !place_ || place_->IsOpen();
    if (written == OAM_SUCCESS && isOpen && rename(beside_.Get(), path_) == 0) {
        (void)beside_.Assign(nullptr);
        return OAM_SUCCESS;
    }
    GiveUp();
    return written != OAM_SUCCESS ? written : OAMERR_FILE_WRITE_ERROR;
}

void DurableFile::CloseBeside() noexcept {
    if (descriptor_ >= 0) close(TakeDescriptor());
}

void DurableFile::GiveUp() noexcept {
    CloseBeside();
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
