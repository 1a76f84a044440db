// The operating system as a door: makes one call of a system function fail, to prove what is left
// behind. It works on the calls of the objects linked into the program (--wrap); what libraries do
// among themselves is not touched.
#pragma once

namespace oam::test {

class SystemFault {
  public:
    // The n-th call of the function from now on, on any thread (1 is the next), fails with the error
    // code. One at a time. Known functions: open, close, rename, remove, fsync, link, mkdir, access,
    // pthread_create.
    SystemFault(const char* function, int nth, int error) noexcept;
    ~SystemFault();
    SystemFault(const SystemFault&) = delete;
    SystemFault& operator=(const SystemFault&) = delete;

    bool HasHappened() const noexcept;
};

// Waits until every thread that the room has made has returned; false when 30 seconds are over.
bool WaitForThreads();

}  // namespace oam::test
