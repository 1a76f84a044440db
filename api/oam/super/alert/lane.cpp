#include "lane.h"

#include <new>

#include "base/database_lock.h"
#include "base/foreign_frame.h"

namespace {

// How many lanes the calling thread is inside of.
constinit thread_local int lanesInside = 0;

bool mayWait() noexcept { return lanesInside == 0 && !oam::HoldsDatabaseLock(); }

}  // namespace

oam_result ReceiverLane::Deliver(const oam_msg_tag* message) noexcept {
    std::unique_lock hold(mutex_);
    if (busy_ && inside_ == std::this_thread::get_id()) {
        hold.unlock();
        return receiver_(message);
    }
    if (busy_ && !mayWait()) return LeaveCopy(message);
    left_.wait(hold, [this] { return !busy_; });
    busy_ = true;
    inside_ = std::this_thread::get_id();
    ++lanesInside;

    hold.unlock();
    const oam_result result = receiver_(message);
    hold.lock();
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
    --lanesInside;
    busy_ = false;
    hold.unlock();
    left_.notify_one();
    return result;
}

oam_result ReceiverLane::LeaveCopy(const oam_msg_tag* message) noexcept {
    std::unique_ptr<Waiting> copy(new (std::nothrow)
                                      Waiting{copyRecord(*message), oam::ForeignFrame::Depth()});
    if (copy == nullptr || copy->record == nullptr) return OAMERR_NOT_ENOUGH_MEMORY;
    *last_ = copy.release();
    last_ = &(*last_)->next;
    return OAM_SUCCESS;
}
