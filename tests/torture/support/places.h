// Where the threads of a rig are: each one's innermost call of the library, and since when.
//
// Kept without locks, so that a thread that hangs anywhere cannot keep the others from being looked
// at, in places that are never freed.
#pragma once

#include <sys/types.h>

#include <array>
#include <atomic>
#include <cstdint>

namespace oam::torture {

struct Place {
    std::atomic<pid_t> thread{0};  // 0: free
    std::atomic<const char*> call{nullptr};
    std::atomic<std::int64_t> since{0};  // milliseconds of the monotonic clock
};

// All of them. A thread without a place (there are more threads than places) is not followed.
using Places = std::array<Place, 512>;
Places& AllPlaces();

std::int64_t NowMs();

// The calling thread is in this call of the library for the time of the scope. Nests: a receiver
// calls the library from within a call. The name must live for ever.
class InCall {
  public:
    explicit InCall(const char* call) noexcept;
    ~InCall();
    InCall(const InCall&) = delete;
    InCall& operator=(const InCall&) = delete;

  private:
    Place* place_;
    const char* outerCall_ = nullptr;
    std::int64_t outerSince_ = 0;
};

}  // namespace oam::torture
