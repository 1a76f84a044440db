// A case in a process of its own, under a deadline.
//
// The library is never started in the test process itself: a case that hangs or crashes ends alone,
// and is told by what it was doing. Expectations that fail in it are printed where they fail.
#pragma once

#include <functional>
#include <string>

namespace oam::torture {

enum class Ending { kRight, kWrong, kHung, kCrashed };

// The child's side. Safe on any thread.
class Watched {
  public:
    explicit Watched(int pipe) : pipe_(pipe) {}

    // What is going on from here, for the message about a case that never returns from it.
    void Doing(const std::string& what) const;

  private:
    const int pipe_;
};

// Runs the body in a child. Anything but a right ending fails the test, with the case's name.
Ending RunWatched(const std::string& name, const std::function<void(const Watched&)>& body);

}  // namespace oam::torture
