#include "metrics/board_count.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "board_facts.h"

namespace oam::server {

struct BoardCount::Known {
    std::mutex mutex;
    std::condition_variable news;
    std::optional<std::size_t> boards;
    bool isAsked = false;
};

BoardCount::BoardCount(Lanes& lanes) : lanes_(lanes), known_(std::make_shared<Known>()) {}

std::optional<std::size_t> BoardCount::Get() {
    constexpr auto kMoment = std::chrono::milliseconds(200);
    std::unique_lock hold(known_->mutex);
    if (!known_->isAsked) {
        known_->isAsked = true;
        hold.unlock();
        const auto refusal = lanes_.Post("CountBoards", "", [known = known_] {
            std::optional<std::size_t> boards;
            try {
                boards = BoardNames().size();
            } catch (const std::exception&) {
                // No memory, or the service is stopped: what was known last.
            }
            const std::lock_guard holdKnown(known->mutex);
            if (boards) known->boards = boards;
            known->isAsked = false;
            known->news.notify_all();
        });
        hold.lock();
        if (refusal) known_->isAsked = false;
    }
    known_->news.wait_for(hold, kMoment, [this] { return !known_->isAsked; });
    return known_->boards;
}

}  // namespace oam::server
