#include "korcore/shared_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr char kDefaultDirectory[] = "/dev/shm";
constexpr mode_t kMode = 0660;
// Attaching starts again when the file is replaced or removed meanwhile; this often is no accident.
constexpr int kAttempts = 100;
// A lock on a descriptor is held for microseconds. Who keeps it longer than this is no friend.
constexpr int kLockPatienceMs = 5000;

bool buildPath(const char* name, char* path, size_t size) {
    if (name == nullptr || name[0] == '\0' || std::strchr(name, '/') != nullptr) return false;
    const char* set = std::getenv("KOR_SHM_DIR");
    const char* directory = set != nullptr && set[0] == '/' ? set : kDefaultDirectory;
    // A failure, which is below zero, counts as too long.
    return static_cast<size_t>(std::snprintf(path, size, "%s/%s", directory, name)) < size;
}

class Descriptor {
  public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool IsOpen() const { return descriptor_ >= 0; }
    int Get() const { return descriptor_; }
    void Release() { descriptor_ = -1; }

  private:
    int descriptor_;
};

// Given back by hand: a child that another thread forks shares the descriptor, so that closing it
// would not be enough.
class DescriptorLock {
  public:
    explicit DescriptorLock(int descriptor) : descriptor_(descriptor) {
        for (int waited = 0; waited < kLockPatienceMs; ++waited) {
            held_ = flock(descriptor, LOCK_EX | LOCK_NB) == 0;
            if (held_ || (errno != EWOULDBLOCK && errno != EINTR)) return;
            const timespec pause{0, 1000000};
            nanosleep(&pause, nullptr);
        }
    }
    ~DescriptorLock() {
        if (held_) flock(descriptor_, LOCK_UN);
    }
    DescriptorLock(const DescriptorLock&) = delete;
    DescriptorLock& operator=(const DescriptorLock&) = delete;

    bool IsHeld() const { return held_; }

  private:
    int descriptor_;
    bool held_ = false;
};

// A file that others see only when it is complete. Without a name until then, its maker's death
// leaves nothing behind; but not every file system has such files, and not every host's rules let
// one be named. Then it has a name beside the right one.
class NewFile {
  public:
    enum Kind { kNameless, kBeside };

    NewFile(const char* path, Kind kind) : path_(path), kind_(kind) {
        descriptor_ = kind == kNameless ? OpenNameless() : OpenBeside();
    }
    ~NewFile() {
        if (kind_ == kBeside && descriptor_ >= 0 && !isNamed_) unlink(beside_);
        if (descriptor_ >= 0 && !isTaken_) close(descriptor_);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    bool IsOpen() const { return descriptor_ >= 0; }
    int Get() const { return descriptor_; }
    // From now on another one closes the descriptor, after GiveName.
    void Take() { isTaken_ = true; }

    // 0, or what errno says: EEXIST when another file has the name. `replace`: there is an empty
    // one of this name, which the caller has locked.
    int GiveName(bool replace) {
        int failed = kind_ == kNameless ? Link() : Rename(replace ? 0 : RENAME_NOREPLACE);
        if (failed == EEXIST && replace) {
            failed = unlink(path_) == 0 || errno == ENOENT ? Link() : errno;
        }
        isNamed_ = failed == 0;
        return failed;
    }

  private:
    // Where an open file can be had by a path.
    static constexpr char kDescriptors[] = "/proc/self/fd";

    int OpenNameless() const {
        char directory[PATH_MAX];  // as long as any path of buildPath
        const auto length = static_cast<size_t>(std::strrchr(path_, '/') - path_) + 1;
        std::memcpy(directory, path_, length);
        directory[length] = '\0';
        return open(directory, O_TMPFILE | O_RDWR | O_CLOEXEC, kMode);
    }
    int OpenBeside() {
        const int length = std::snprintf(beside_, sizeof beside_, "%s.XXXXXX", path_);
        if (static_cast<size_t>(length) >= sizeof beside_) return -1;
        return mkostemp(beside_, O_CLOEXEC);
    }
    int Link() const {
        char link[sizeof kDescriptors + 16];
        std::snprintf(link, sizeof link, "%s/%d", kDescriptors, descriptor_);
        return linkat(AT_FDCWD, link, AT_FDCWD, path_, AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;
    }
    int Rename(unsigned flags) const {
        return renameat2(AT_FDCWD, beside_, AT_FDCWD, path_, flags) == 0 ? 0 : errno;
    }

    const char* path_;
    const Kind kind_;
    int descriptor_;
    bool isTaken_ = false;
    bool isNamed_ = false;
    char beside_[PATH_MAX];
};

// Reserves room for the first `size` bytes of a file that has `present` of them. Where the file
// system cannot do it the C library writes into each block, which must not hit bytes in use.
bool reserve(int descriptor, off_t present, off_t size) {
    int failed = 0;
    do {
        failed = fallocate(descriptor, 0, 0, size) == 0 ? 0 : errno;
    } while (failed == EINTR);
    if (failed != EOPNOTSUPP) return failed == 0;
    if (present >= size) return true;
    do {
        failed = posix_fallocate(descriptor, present, size - present);
    } while (failed == EINTR);
    return failed == 0;
}

}  // namespace

KorSharedFile::~KorSharedFile() { Close(); }

bool KorSharedFile::Open(const char* name, size_t size, Initialise initialise) noexcept {
    Close();
    char path[PATH_MAX];
    if (size == 0 || size > PTRDIFF_MAX || !buildPath(name, path, sizeof path)) return false;
    bool made = false;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const Step step = Attach(path, size, initialise);
        // Its maker attaches it as well: the system goes on to list a nameless file as such.
        if (step == Step::kMade) made = true;
        if (step == Step::kRefused) return false;
        if (step != Step::kDone) continue;
        created_ = made;
        return true;
    }
    return false;
}

// Without O_CREAT: some systems refuse it, in a directory that all may write to, for a file that
// belongs to somebody else. Without waiting: the name may be a pipe's.
KorSharedFile::Step KorSharedFile::Attach(const char* path, size_t size,
                                          Initialise initialise) noexcept {
    Descriptor file(open(path, O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
    if (!file.IsOpen()) {
        return errno == ENOENT ? Make(path, size, initialise, false) : Step::kRefused;
    }
    struct stat status {};
    if (fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return Step::kRefused;

    const DescriptorLock lock(file.Get());
    if (!lock.IsHeld() || fstat(file.Get(), &status) != 0) return Step::kRefused;
    if (status.st_nlink == 0) return Step::kAgain;
    if (status.st_size == 0) return Make(path, size, initialise, true);
    if (!reserve(file.Get(), status.st_size, static_cast<off_t>(size))) return Step::kRefused;
    if (!Map(file.Get(), size)) return Step::kRefused;
    file.Release();
    return Step::kDone;
}

KorSharedFile::Step KorSharedFile::Make(const char* path, size_t size, Initialise initialise,
                                        bool replace) noexcept {
    const auto makeAs = [=, this](NewFile::Kind kind) {
        NewFile file(path, kind);
        if (!file.IsOpen() || !reserve(file.Get(), 0, static_cast<off_t>(size)) ||
            fchmod(file.Get(), kMode) != 0 || !Map(file.Get(), size)) {
            return Step::kRefused;
        }
        file.Take();
        Step step = Step::kRefused;
        if (initialise == nullptr || initialise(data_, size_)) {
            const int failed = file.GiveName(replace);
            if (failed == 0) step = Step::kMade;
            if (failed == EEXIST) step = Step::kAgain;
        }
        Close();
        return step;
    };
    const Step step = makeAs(NewFile::kNameless);
    return step != Step::kRefused ? step : makeAs(NewFile::kBeside);
}

bool KorSharedFile::Map(int descriptor, size_t size) noexcept {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return false;
    void* data = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (data == MAP_FAILED) return false;
    data_ = data;
    size_ = size;
    descriptor_ = descriptor;
    device_ = status.st_dev;
    inode_ = status.st_ino;
    return true;
}

void KorSharedFile::Close() noexcept {
    if (data_ == nullptr) return;
    munmap(data_, size_);
    close(descriptor_);
    data_ = nullptr;
    size_ = 0;
    descriptor_ = -1;
    created_ = false;
}

bool KorSharedFile::IsWhole() const noexcept {
    if (data_ == nullptr) return false;
    // Half of what a status costs; nobody reads from where the descriptor stands.
    const off_t end = lseek(descriptor_, 0, SEEK_END);
    // Who cannot look knows nothing; a held lock must not be given up for that.
    return end < 0 || end >= static_cast<off_t>(size_);
}

bool KorSharedFile::IsSameFile(const KorSharedFile& other) const noexcept {
    return IsOpen() && other.IsOpen() && device_ == other.device_ && inode_ == other.inode_;
}

bool KorSharedFile::UnderLock(Work work, void* context) noexcept {
    if (data_ == nullptr) return false;
    const DescriptorLock lock(descriptor_);
    return lock.IsHeld() && IsWhole() && work(data_, size_, context);
}

void KorSharedFile::GiveUp() noexcept {
    if (data_ == nullptr) return;
    mmap(data_, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
}
