#include "alerts/alert_ring.h"

#include <algorithm>
#include <new>
#include <utility>

#include "store/bell.h"

namespace oam::server {

AlertRing::AlertRing(std::uint64_t newest, std::size_t capacity, Bell* bell)
    : slots_(std::max<std::size_t>(capacity, 1)), before_(newest), given_(newest), bell_(bell) {}

std::uint64_t AlertRing::Publish(StoredAlert alert) noexcept {
    std::shared_ptr<StoredAlert> kept;
    try {
        kept = std::make_shared<StoredAlert>(std::move(alert));
    } catch (const std::bad_alloc&) {
        // Its number without it: every reader is told of a gap.
    }
    return Put(std::move(kept));
}

std::uint64_t AlertRing::PublishMissing() noexcept { return Put(nullptr); }

std::uint64_t AlertRing::Put(std::shared_ptr<StoredAlert> alert) noexcept {
    std::shared_ptr<const StoredAlert> leaving;  // ends after the mutex
    std::uint64_t number;
    {
        const std::lock_guard hold(mutex_);
        if (isClosed_) return 0;
        number = ++given_;
        if (alert != nullptr) alert->sequence = number;
        std::shared_ptr<const StoredAlert>& slot = slots_[number % slots_.size()];
        leaving = std::move(slot);
        slot = std::move(alert);
    }
    news_.notify_all();
    if (bell_ != nullptr) bell_->Ring();
    return number;
}

const std::shared_ptr<const StoredAlert>& AlertRing::Slot(std::uint64_t sequence) const {
    return slots_[sequence % slots_.size()];
}

// Shown() + 1 when there is none.
std::uint64_t AlertRing::FirstKeptBehind(std::uint64_t after) const {
    const std::uint64_t held = std::min<std::uint64_t>(given_ - before_, slots_.size());
    std::uint64_t first = std::max(after, given_ - held) + 1;
    while (first <= Shown() && Slot(first) == nullptr) ++first;
    return std::min(first, Shown() + 1);
}

AlertRing::Batch AlertRing::Read(std::uint64_t after, std::size_t limit) const {
    limit = std::clamp<std::size_t>(limit, 1, std::min(kMostAtOnce, slots_.size()));
    Batch batch;
    batch.alerts.reserve(limit);
    const std::lock_guard hold(mutex_);
    batch.newest = Shown();
    batch.last = after;
    if (after >= batch.newest) return batch;
    std::uint64_t next = FirstKeptBehind(after);
    batch.isGap = next > after + 1;
    for (; next <= batch.newest && batch.alerts.size() < limit && Slot(next) != nullptr; ++next)
        batch.alerts.push_back(Slot(next));
    batch.last = next - 1;
    return batch;
}

std::uint64_t AlertRing::Newest() const {
    const std::lock_guard hold(mutex_);
    return Shown();
}

std::uint64_t AlertRing::Oldest() const {
    const std::lock_guard hold(mutex_);
    return FirstKeptBehind(0);
}

bool AlertRing::WaitBehind(std::uint64_t after, const Deadline& deadline) const {
    std::unique_lock hold(mutex_);
    const auto isOver = [&] { return Shown() > after || isClosed_; };
    if (deadline)
        news_.wait_until(hold, *deadline, isOver);
    else
        news_.wait(hold, isOver);
    return Shown() > after;
}

void AlertRing::Close() {
    {
        const std::lock_guard hold(mutex_);
        isClosed_ = true;
    }
    news_.notify_all();
}

bool AlertRing::IsClosed() const {
    const std::lock_guard hold(mutex_);
    return isClosed_;
}

void AlertRing::ShowUpTo(std::uint64_t last) {
    {
        const std::lock_guard hold(mutex_);
        showUpTo_ = last;
    }
    news_.notify_all();
}

std::uint64_t AlertRing::Given() const {
    const std::lock_guard hold(mutex_);
    return given_;
}

}  // namespace oam::server
