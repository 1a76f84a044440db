#include "store/bell.h"

namespace oam::server {

void Bell::Ring() noexcept {
    if (isRung_.exchange(true)) return;
    {
        // The waiting thread is either before its look at the flag, or asleep.
        const std::lock_guard hold(mutex_);
    }
    news_.notify_one();
}

void Bell::End() noexcept {
    {
        const std::lock_guard hold(mutex_);
        isEnded_ = true;
    }
    news_.notify_one();
}

bool Bell::AwaitRing() {
    std::unique_lock hold(mutex_);
    news_.wait(hold, [this] { return isRung_ || isEnded_; });
    // Before the news is looked at: what comes later rings again.
    isRung_ = false;
    return !isEnded_;
}

bool Bell::AwaitEnd(std::chrono::milliseconds limit) {
    std::unique_lock hold(mutex_);
    return news_.wait_for(hold, limit, [this] { return isEnded_; });
}

}  // namespace oam::server
