// SIGTERM and SIGINT end the daemon, SIGHUP makes it read its files again; SIGPIPE is ignored.
//
// They are blocked in every thread and read by one, so no handler runs in the middle of anything.
#pragma once

#include <chrono>

namespace oam::server {

enum class Signal { kNone, kEnd, kReload };

class Signals {
  public:
    // Before the first thread is made: threads inherit what is blocked.
    Signals();

    // The next one, or kNone after the time.
    Signal Next(std::chrono::milliseconds limit) const;
};

}  // namespace oam::server
