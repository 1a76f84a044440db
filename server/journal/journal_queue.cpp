#include "journal/journal_queue.h"

#include <chrono>
#include <exception>
#include <utility>

namespace oam::server {
namespace {

constexpr auto kGrace = std::chrono::seconds(5);

}  // namespace

JournalQueue::JournalQueue(Send send, std::size_t room) : state_(std::make_shared<State>()) {
    state_->send = std::move(send);
    state_->room = room;
    thread_ = std::thread([state = state_] { Work(*state); });
}

JournalQueue::~JournalQueue() {
    std::unique_lock hold(state_->mutex);
    state_->isEnding = true;
    state_->changed.notify_all();
    const bool isDone = state_->changed.wait_for(hold, kGrace, [this] { return state_->isDone; });
    hold.unlock();
    if (isDone)
        thread_.join();
    else
        thread_.detach();
}

void JournalQueue::Put(const Fields& fields) {
    const std::lock_guard hold(state_->mutex);
    if (state_->lines.size() >= state_->room) {
        ++state_->leftOut;
        return;
    }
    state_->lines.push_back(fields);
    state_->changed.notify_all();
}

void JournalQueue::Work(State& state) {
    std::unique_lock hold(state.mutex);
    for (;;) {
        state.changed.wait(hold, [&] { return state.isEnding || !state.lines.empty(); });
        if (state.lines.empty()) break;
        std::deque<Fields> lines = std::exchange(state.lines, {});
        const std::size_t leftOut = std::exchange(state.leftOut, 0);
        hold.unlock();
        try {
            for (const Fields& fields : lines) state.send(fields);
            if (leftOut != 0)
                state.send({"MESSAGE=" + std::to_string(leftOut) + " lines were left out",
                            "PRIORITY=4", "SYSLOG_IDENTIFIER=oamd"});
        } catch (const std::exception&) {
            // No memory for what would only be told.
        }
        hold.lock();
    }
    state.isDone = true;
    state.changed.notify_all();
}

}  // namespace oam::server
