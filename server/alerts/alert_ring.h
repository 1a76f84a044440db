// The newest alerts in memory, and the numbers that all alerts get.
//
// Publish runs on the service's threads, at times with the service's locks held: it takes one mutex
// for a moment, waits for nobody and throws nothing. Everyone else reads: each reader has the number
// that it saw last, and asks for what came after. What a slow reader missed is said as a gap; it
// delays nobody.
//
// Numbers go on over restarts. The ring starts behind the number that it is given; after a kill that
// is a number that was reserved ahead, so no number is ever given twice.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "alerts/stored_alert.h"

namespace oam::server {

class AlertRing {
  public:
    // The first alert gets `newest` + 1. At most `capacity` alerts are kept.
    AlertRing(std::uint64_t newest, std::size_t capacity);

    // Gives the alert its number and keeps it; the number. An alert that there is no memory for
    // has a number and is missing.
    std::uint64_t Publish(StoredAlert alert) noexcept;

    struct Batch {
        std::vector<std::shared_ptr<const StoredAlert>> alerts;  // ascending
        // Alerts between `after` and the first of these (or `newest`) that are not here any more.
        bool isGap = false;
        std::uint64_t newest = 0;
    };
    // At most `limit` alerts behind the number `after`, and nothing when there are none.
    Batch Read(std::uint64_t after, std::size_t limit) const;

    std::uint64_t Newest() const;
    // Of those kept; Newest() + 1 when none is.
    std::uint64_t Oldest() const;

    // Waits until there is something behind `after`, or Close: false.
    bool WaitBehind(std::uint64_t after) const;
    // Ends all waits, for good.
    void Close();

  private:
    mutable std::mutex mutex_;
    mutable std::condition_variable news_;
    std::deque<std::shared_ptr<const StoredAlert>> alerts_;
    std::uint64_t newest_;
    const std::size_t capacity_;
    bool isClosed_ = false;
};

}  // namespace oam::server
