// Wakes the thread that writes, when there is something new to be written.
//
// Whoever has something rings: from any thread and under any lock of its own. A bell that has been
// rung already costs its next ringer nothing.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace oam::server {

class Bell {
  public:
    void Ring() noexcept;
    // No more news is waited for.
    void End() noexcept;

    // Waits until it is rung, and is ready to be rung again: true. False: the end.
    bool AwaitRing();
    // Waits until the end, whatever rings; false when the time is over before.
    bool AwaitEnd(std::chrono::milliseconds limit);

  private:
    std::mutex mutex_;
    std::condition_variable news_;
    std::atomic<bool> isRung_{false};
    bool isEnded_ = false;
};

}  // namespace oam::server
