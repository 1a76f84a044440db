// Threads that a call starts run when the test says so, one after the other, so that what a call
// leaves behind is the same every time.
//
// The program's own pthread_create stands before the C library's. Outside of a HeldThreads it is
// passed on. The waits of the service (zolSleep) and the syncing of files take no time here.
#pragma once

namespace oam::torture {

// Holds the threads back that the calling thread starts in its scope.
class HeldThreads {
  public:
    HeldThreads() noexcept;
    ~HeldThreads();
    HeldThreads(const HeldThreads&) = delete;
    HeldThreads& operator=(const HeldThreads&) = delete;
};

// Runs them, and those that they start, to their ends.
void RunHeldThreads();

}  // namespace oam::torture
