// Waiting for what the kernel does and tells nobody: looks until the condition holds, the limit is
// over or the plug-in ends.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace oam::pci {

class Patience {
  public:
    template <class Condition>
    bool Await(std::chrono::milliseconds limit, const Condition& condition) {
        const auto end = std::chrono::steady_clock::now() + limit;
        while (!condition()) {
            if (std::chrono::steady_clock::now() >= end || !Pause()) return false;
        }
        return true;
    }

    // Whoever waits comes back, and nobody waits from now on.
    void End() {
        const std::lock_guard hold(lock_);
        isEnded_ = true;
        ended_.notify_all();
    }

  private:
    static constexpr std::chrono::milliseconds kStep{5};

    bool Pause() {
        std::unique_lock hold(lock_);
        return !ended_.wait_for(hold, kStep, [this] { return isEnded_; });
    }

    std::mutex lock_;
    std::condition_variable ended_;
    bool isEnded_ = false;
};

}  // namespace oam::pci
