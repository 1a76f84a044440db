// Makes memory run out within one call: the calling thread's n-th request for memory fails, alone
// or with every later one.
//
// The program's own malloc, calloc and realloc stand before the C library's, so what fopen, opendir
// or dlopen ask for inside the library counts as well as the library's `new (std::nothrow)`, and so
// does a thread that is to be started. The throwing forms of new, which the service does not use,
// never fail: scripted modules and receivers stay out of it.
#pragma once

#include <cstddef>

namespace oam::torture {

enum class Failing { kOnce, kFromThereOn };

class MemoryFuse {
  public:
    // 1 is the next request; 0: none fails, they are only counted. One fuse a thread.
    MemoryFuse(std::size_t nth, Failing how) noexcept;
    ~MemoryFuse();
    MemoryFuse(const MemoryFuse&) = delete;
    MemoryFuse& operator=(const MemoryFuse&) = delete;

    // The requests so far.
    std::size_t Requests() const noexcept;

    // Whether a request of this thread fails now; counts it.
    static bool FailsNow() noexcept;
};

// Blocks of memory in use, of all threads.
long LiveBlocks() noexcept;

}  // namespace oam::torture
