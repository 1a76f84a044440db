// A named file mapped into every process that opens it: the base of shared segments and named locks.
//
// The file lies in /dev/shm, or in the directory that KOR_SHM_DIR names when it is set and absolute
// (read at every Open). It is made for owner and group only (0660, whatever the umask), and its
// room is reserved when it is made, so that a full file system is a failed Open and not a signal at
// the first write. Making and initialising run under a lock on the descriptor: another process
// never sees a file that is half made.
#pragma once

#include <cstddef>

#include "korcore/mutex.h"

class KOR_API KorSharedFile {
  public:
    KorSharedFile() noexcept = default;
    ~KorSharedFile();
    KorSharedFile(const KorSharedFile&) = delete;
    KorSharedFile& operator=(const KorSharedFile&) = delete;

    // Called under the descriptor's lock, on a file that was made just now (all zero).
    using Initialise = bool (*)(void* data, size_t size);

    // Creates or attaches `name` with `size` bytes. An existing file that is shorter is grown (the
    // new bytes are zero); it is never shrunk. False: nothing is mapped. The name must not hold a
    // slash.
    bool Open(const char* name, size_t size, Initialise initialise) noexcept;
    void Close() noexcept;

    bool IsOpen() const noexcept { return data_ != nullptr; }
    bool WasCreated() const noexcept { return created_; }
    void ClearCreated() noexcept { created_ = false; }
    // False when another process has cut the file below the mapped size since: touching the mapping
    // would be fatal.
    bool IsWhole() const noexcept;
    void* Data() const noexcept { return data_; }
    size_t Size() const noexcept { return size_; }

  private:
    void* data_ = nullptr;
    size_t size_ = 0;
    int descriptor_ = -1;
    bool created_ = false;
};
