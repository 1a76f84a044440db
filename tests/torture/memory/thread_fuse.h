// Makes the process run out of threads: its n-th start of a thread from now on fails, alone or with
// every later one, on whatever thread it is tried.
//
// The program's own pthread_create (held_threads.cpp) asks it.
#pragma once

#include <cstddef>

#include "memory_fuse.h"

namespace oam::torture {

class ThreadFuse {
  public:
    // 1 is the next start; 0: none fails, they are only counted. One at a time in a process.
    ThreadFuse(std::size_t nth, Failing how) noexcept;
    ~ThreadFuse();
    ThreadFuse(const ThreadFuse&) = delete;
    ThreadFuse& operator=(const ThreadFuse&) = delete;

    // The starts so far.
    static std::size_t Starts() noexcept;

    // Whether a start fails now; counts it.
    static bool FailsNow() noexcept;
};

}  // namespace oam::torture
