// What a thread that reads a stream hands to the thread that runs the command.
#pragma once

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

#include "interruption.h"

namespace oam {

template <class Event>
class EventQueue {
  public:
    using Deadline = std::optional<std::chrono::steady_clock::time_point>;

    EventQueue() : news_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~EventQueue() { close(news_); }
    EventQueue(const EventQueue&) = delete;
    EventQueue& operator=(const EventQueue&) = delete;

    void Put(Event event) {
        const std::lock_guard hold(mutex_);
        events_.push_back(std::move(event));
        Wake();
    }
    // Nothing comes any more.
    void End() {
        const std::lock_guard hold(mutex_);
        isEnded_ = true;
        Wake();
    }

    bool IsEnded() {
        const std::lock_guard hold(mutex_);
        return isEnded_;
    }

    // Nothing at the deadline, after an interruption, and at the end.
    std::optional<Event> Next(const Deadline& deadline, const Interruption& interruption) {
        for (;;) {
            {
                const std::lock_guard hold(mutex_);
                if (!events_.empty()) {
                    std::optional<Event> first(std::move(events_.front()));
                    events_.pop_front();
                    return first;
                }
                if (isEnded_) return std::nullopt;
            }
            const int limit = MillisecondsUntil(deadline);
            if (limit == 0 || interruption.IsRequested()) return std::nullopt;
            pollfd events[] = {{news_, POLLIN, 0}, {interruption.Descriptor(), POLLIN, 0}};
            (void)poll(events, 2, limit);
            std::uint64_t count = 0;
            (void)!read(news_, &count, sizeof count);
        }
    }

  private:
    void Wake() {
        const std::uint64_t one = 1;
        (void)!write(news_, &one, sizeof one);
    }
    static int MillisecondsUntil(const Deadline& deadline) {
        if (!deadline) return -1;
        const auto left = *deadline - std::chrono::steady_clock::now();
        const auto count = std::chrono::ceil<std::chrono::milliseconds>(left).count();
        return static_cast<int>(std::clamp<decltype(count)>(count, 0, INT_MAX));
    }

    std::mutex mutex_;
    std::deque<Event> events_;
    bool isEnded_ = false;
    int news_;
};

}  // namespace oam
