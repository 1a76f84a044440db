// An end that many threads wait for, besides what else they wait for.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace oam::fleet {

// True when it is over before the time is.
inline bool WaitForStop(const std::stop_token& stop, std::chrono::milliseconds limit) {
    std::mutex mutex;
    std::condition_variable_any ended;
    std::unique_lock hold(mutex);
    return ended.wait_for(hold, stop, limit, [&] { return stop.stop_requested(); });
}

}  // namespace oam::fleet
