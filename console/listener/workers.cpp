#include "listener/workers.h"

namespace oam::console {

void Workers::enqueue(std::function<void()> task) {
    const std::lock_guard hold(counts_->mutex_);
    counts_->tasks_.push_back(std::move(task));
    const std::size_t most = counts_->limits_.requests + counts_->limits_.streams;
    if (counts_->idle_ < counts_->tasks_.size() && threads_.size() < most)
        threads_.emplace_back([this] { Work(); });
    counts_->news_.notify_one();
}

void Workers::shutdown() {
    {
        const std::lock_guard hold(counts_->mutex_);
        counts_->isEnding_ = true;
        counts_->news_.notify_all();
    }
    for (std::thread& thread : threads_) thread.join();
}

void Workers::Work() {
    Counts& counts = *counts_;
    std::unique_lock hold(counts.mutex_);
    for (;;) {
        ++counts.idle_;
        counts.news_.wait(hold, [&] {
            const bool isRoom = counts.requests_ < counts.limits_.requests;
            return (isRoom && !counts.tasks_.empty()) ||
                   (counts.isEnding_ && counts.tasks_.empty());
        });
        --counts.idle_;
        if (counts.tasks_.empty()) return;
        const auto task = std::move(counts.tasks_.front());
        counts.tasks_.pop_front();
        ++counts.requests_;
        hold.unlock();
        task();
        hold.lock();
        --counts.requests_;
        // A task may have waited for room, not for a thread.
        counts.news_.notify_one();
    }
}

std::shared_ptr<void> Workers::Counts::BecomeStream() {
    const std::lock_guard hold(mutex_);
    if (streams_ >= limits_.streams) return nullptr;
    ++streams_;
    --requests_;
    news_.notify_one();
    return {this, [](Counts* counts) {
                const std::lock_guard again(counts->mutex_);
                --counts->streams_;
                ++counts->requests_;
            }};
}

}  // namespace oam::console
