#include "import_aside.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "base/path.h"
#include "durable_file.h"
#include "loading/listing.h"

using oam::JoinedPath;

namespace {

constexpr char kDataFileExtension[] = ".xmo";
constexpr char kAside[] = "/import-aside";             // restored at the next start
constexpr char kBeingMade[] = "/import-aside.new";     // not complete
constexpr char kNoLongerUsed[] = "/import-aside.old";  // being removed
constexpr char kRefused[] = "/import-refused";
constexpr mode_t kDirectoryMode = 0777;  // the process's umask applies

// Calls visit(file name) for every data file of a directory; stops at the first false.
template <class Visit>
bool forEachDataFile(const char* directory, Visit visit) noexcept {
    oam::FileListing listing;
    if (!listing.Open(directory)) return errno == ENOENT;
    while (const char* name = listing.Next(kDataFileExtension)) {
        if (!visit(name)) return false;
    }
    return !listing.HasFailed();
}

bool copyData(int from, int to) noexcept {
    char block[16384];
    ssize_t got;
    while ((got = read(from, block, sizeof block)) > 0) {
        for (ssize_t done = 0; done < got;) {
            const ssize_t put = write(to, block + done, static_cast<size_t>(got - done));
            if (put < 0) return false;
            done += put;
        }
    }
    return got == 0 && fsync(to) == 0;
}

// For file systems without links.
bool copyFile(const char* from, const char* to) noexcept {
    const int source = open(from, O_RDONLY | O_CLOEXEC);
    if (source < 0) return false;
    struct stat status;
    const int target = fstat(source, &status) != 0
                           ? -1
                           : open(to, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, status.st_mode);
    const bool copied = target >= 0 && copyData(source, target);
    if (target >= 0 && close(target) != 0) errno = EIO;
    close(source);
    return copied;
}

// Gives every data file of one directory a second name in the other.
bool linkDataFiles(const char* from, const char* to) noexcept {
    return forEachDataFile(from, [from, to](const char* name) {
        const JoinedPath source(from, name);
        const JoinedPath target(to, name);
        return link(source.Get(), target.Get()) == 0 || copyFile(source.Get(), target.Get());
    });
}

bool removeDataFiles(const char* directory) noexcept {
    return forEachDataFile(directory, [directory](const char* name) {
        const JoinedPath path(directory, name);
        return remove(path.Get()) == 0;
    });
}

void removeTree(const char* directory) noexcept {
    (void)removeDataFiles(directory);
    (void)rmdir(directory);
}

bool syncDirectory(const char* directory) noexcept {
    const JoinedPath inside(directory, ".");
    return ContainingDirectory(inside.Get()).Sync();
}

// 0, or why it is not seen. One look that fails does not say that there was no import.
int lookFor(const char* path) noexcept {
    int error = 0;
    for (int looks = 0; looks < 2; ++looks) {
        if (access(path, F_OK) == 0) return 0;
        error = errno;
        if (error == ENOENT) break;
    }
    return error;
}

void removeNamed(const char* directory, const char* name) noexcept {
    removeTree(JoinedPath(directory, name).Get());
}

bool renameNamed(const char* directory, const char* from, const char* to) noexcept {
    const JoinedPath source(directory, from);
    const JoinedPath target(directory, to);
    return renameDurably(source.Get(), target.Get());
}

}  // namespace

oam_result setDataFilesAside(const char* directory) noexcept {
    removeNamed(directory, kBeingMade);
    const JoinedPath made(directory, kBeingMade);
    const bool complete = mkdir(made.Get(), kDirectoryMode) == 0 &&
                          linkDataFiles(directory, made.Get()) && syncDirectory(made.Get()) &&
                          renameNamed(directory, kBeingMade, kAside);
    if (complete) return OAM_SUCCESS;
    // A rename that happened but could not be synced counts as not done.
    removeNamed(directory, kAside);
    removeTree(made.Get());
    return OAMERR_FILE_WRITE_ERROR;
}

bool dropDataFilesAside(const char* directory) noexcept {
    removeNamed(directory, kNoLongerUsed);
    if (!renameNamed(directory, kAside, kNoLongerUsed)) {
        // Renamed but not known to be durable: the caller still needs what is in there.
        (void)renameNamed(directory, kNoLongerUsed, kAside);
        return false;
    }
    removeNamed(directory, kNoLongerUsed);
    return true;
}

void keepDataFilesAside(const char* directory) noexcept {
    removeNamed(directory, kRefused);
    (void)renameNamed(directory, kAside, kRefused);
}

bool rollBackImport(const char* directory) noexcept {
    removeNamed(directory, kBeingMade);
    removeNamed(directory, kNoLongerUsed);
    const JoinedPath aside(directory, kAside);
    // Where looking is forbidden no data file can be reached either.
    if (const int error = lookFor(aside.Get())) return !oam::IsOutOfMeans(error);
    return removeDataFiles(directory) && linkDataFiles(aside.Get(), directory) &&
           syncDirectory(directory) && dropDataFilesAside(directory);
}
