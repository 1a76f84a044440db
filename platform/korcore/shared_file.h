// A named file mapped into every process that opens it: the base of shared segments and named
// locks.
//
// The file lies in /dev/shm, or in the directory that KOR_SHM_DIR names when it is set and absolute
// (read at every Open). The directory should be one that a restart of the machine empties. The file
// is made for owner and group only (0660, whatever the umask), and its room is reserved when it is
// made or grown, so that a full file system is a failed Open and not a signal at the first write.
//
// A new file gets its name when it is complete: another process never sees a file that is half
// made, and a maker that dies leaves nothing behind. Only where a file cannot be made without a
// name it has one beside the right one until then, which such a maker leaves, in nobody's way. An
// empty file under the right name was never completed by whoever made it and is made anew.
#pragma once

#include <sys/types.h>

#include <cstddef>

#include "korcore/mutex.h"

class KOR_API KorSharedFile {
  public:
    KorSharedFile() noexcept = default;
    ~KorSharedFile();
    KorSharedFile(const KorSharedFile&) = delete;
    KorSharedFile& operator=(const KorSharedFile&) = delete;

    // Called on a file that is all zero and that nobody else can see yet. False: Open fails.
    using Initialise = bool (*)(void* data, size_t size);
    // Works on the mapped bytes; the context is the caller's. False is a failure.
    using Work = bool (*)(void* data, size_t size, void* context);

    // Creates or attaches `name` with `size` bytes. An existing file that is shorter is grown (the
    // new bytes are zero); it is never shrunk. False: nothing is mapped. The name must not hold a
    // slash; only a regular file is attached, never through a symbolic link, and not when another
    // process keeps its lock for seconds. `initialise` may be null: the file stays all zero.
    bool Open(const char* name, size_t size, Initialise initialise) noexcept;
    void Close() noexcept;

    bool IsOpen() const noexcept { return data_ != nullptr; }
    bool WasCreated() const noexcept { return created_; }
    void ClearCreated() noexcept { created_ = false; }
    // False when another process has cut the file below the mapped size since: touching the mapping
    // would be fatal.
    bool IsWhole() const noexcept;
    // Whether both map one file, whatever its names.
    bool IsSameFile(const KorSharedFile& other) const noexcept;
    void* Data() const noexcept { return data_; }
    size_t Size() const noexcept { return size_; }

    // Does the work while no other process opens the file or is in an UnderLock of it. False when
    // the file is not open or not whole, when another process keeps its lock for seconds, or when
    // the work fails.
    bool UnderLock(Work work, void* context) noexcept;

    // For a file that was cut short while something still points into the mapping: puts private
    // zeros in the mapping's place, so that following such a pointer is no longer fatal.
    void GiveUp() noexcept;

  private:
    enum class Step { kDone, kMade, kRefused, kAgain };

    Step Attach(const char* path, size_t size, Initialise initialise) noexcept;
    // Leaves the file to be attached.
    Step Make(const char* path, size_t size, Initialise initialise, bool replace) noexcept;
    bool Map(int descriptor, size_t size) noexcept;

    void* data_ = nullptr;
    size_t size_ = 0;
    int descriptor_ = -1;
    bool created_ = false;
    dev_t device_ = 0;
    ino_t inode_ = 0;
};
