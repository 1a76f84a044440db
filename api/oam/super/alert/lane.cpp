#include "lane.h"

#include <new>

#include "base/database_lock.h"
#include "base/foreign_frame.h"

namespace {

// The lanes that the calling thread is inside of, the innermost first.
constinit thread_local const ReceiverLane::Inside* innermost = nullptr;

bool mayWait() noexcept { return innermost == nullptr && !oam::HoldsDatabaseLock(); }

}  // namespace

ReceiverLane::Inside::Inside(const ReceiverLane* lane) noexcept : lane_(lane), outer_(innermost) {
    innermost = this;
}

ReceiverLane::Inside::~Inside() { innermost = outer_; }

bool ReceiverLane::Inside::Is(const ReceiverLane* lane) noexcept {
    for (const Inside* inside = innermost; inside != nullptr; inside = inside->outer_) {
        if (inside->lane_ == lane) return true;
    }
    return false;
}

oam_result ReceiverLane::Deliver(const oam_msg_tag* message) noexcept {
    if (!Enter()) {
        if (Inside::Is(this)) return receiver_(message);
        const bool waits = mayWait();
        std::unique_lock hold(mutex_);
        // Who is inside asks for the lock before it leaves, now that it is wanted. Said again after
        // each wait: another one may have entered without it.
        while (state_.exchange(kWanted, std::memory_order_acquire) != kFree) {
            if (!waits) return LeaveCopy(message);
            left_.wait(hold);
        }
    }
    const Inside inside(this);
    const oam_result result = receiver_(message);
    int busy = kBusy;
    if (!state_.compare_exchange_strong(busy, kFree, std::memory_order_release)) DeliverCopies();
    return result;
}

bool ReceiverLane::Enter() noexcept {
    int free = kFree;
    return state_.compare_exchange_strong(free, kBusy, std::memory_order_acquire);
}

// What others have left here; then the next one's turn.
void ReceiverLane::DeliverCopies() noexcept {
    std::unique_lock hold(mutex_);
    while (first_ != nullptr) {
        const std::unique_ptr<Waiting> next(first_);
        first_ = next->next;
        if (first_ == nullptr) last_ = &first_;
        hold.unlock();
        {
            const oam::InheritedDepth depth(next->depth);
            (void)receiver_(next->record.get());
        }
        hold.lock();
    }
    state_.store(kFree, std::memory_order_release);
    hold.unlock();
    left_.notify_one();
}

oam_result ReceiverLane::LeaveCopy(const oam_msg_tag* message) noexcept {
    std::unique_ptr<Waiting> copy(new (std::nothrow)
                                      Waiting{copyRecord(*message), oam::ForeignFrame::Depth()});
    if (copy == nullptr || copy->record == nullptr) return OAMERR_NOT_ENOUGH_MEMORY;
    *last_ = copy.release();
    last_ = &(*last_)->next;
    return OAM_SUCCESS;
}
