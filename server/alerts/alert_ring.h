// The newest alerts in memory, and the numbers that all alerts get.
//
// Publish runs on the service's threads, at times with the service's locks held: it takes one mutex
// for a moment, waits for nobody and throws nothing. Everyone else reads: each reader has the
// number that it saw last, and asks for what came after. What a slow reader missed is said as a
// gap; it delays nobody.
//
// Numbers go on over restarts (store/numbers.h). The ring starts behind the number that it is
// given, and shows an alert when its number has been reserved on the disk (ShowUpTo).
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "alerts/stored_alert.h"

namespace oam::server {

class Bell;

class AlertRing {
  public:
    // The first alert gets `newest` + 1. At most `capacity` alerts are kept, one at least. `bell`
    // is rung for every alert.
    AlertRing(std::uint64_t newest, std::size_t capacity, Bell* bell = nullptr);

    // Gives the alert its number and keeps it; the number. An alert that there is no memory for
    // has a number and is missing. 0 after Close: it is dropped.
    std::uint64_t Publish(StoredAlert alert) noexcept;
    // The same for an alert that could not even be made: a number without an alert.
    std::uint64_t PublishMissing() noexcept;

    struct Batch {
        // Ascending, each number one more than the one before: a batch ends before a gap.
        std::vector<std::shared_ptr<const StoredAlert>> alerts;
        // The alerts behind `after`, up to the first of these (or `newest`), are not here any more.
        bool isGap = false;
        std::uint64_t newest = 0;
        std::uint64_t last = 0;  // what to ask behind the next time
    };
    // At most `limit` alerts behind the number `after`, and at most kMostAtOnce, since publishers
    // wait meanwhile; nothing when there are none.
    static constexpr std::size_t kMostAtOnce = 256;
    Batch Read(std::uint64_t after, std::size_t limit) const;

    // Of those that are shown. The number of the newest counts, whether or not it is missing.
    std::uint64_t Newest() const;
    // Of those kept; Newest() + 1 when none is.
    std::uint64_t Oldest() const;

    // Waits until there is something behind `after`: true. False: closed, or the time is over.
    using Deadline = std::optional<std::chrono::steady_clock::time_point>;
    bool WaitBehind(std::uint64_t after, const Deadline& deadline = std::nullopt) const;

    // Ends all waits, for good. What was published can still be read; no number is given any more.
    void Close();
    bool IsClosed() const;

    // Alerts above this number wait until it is raised, and the numbers' keeper asks for that as
    // soon as it can. Without a call nothing waits.
    void ShowUpTo(std::uint64_t last);
    // Shown or not: what the numbers' keeper has to reserve for.
    std::uint64_t Given() const;

  private:
    std::uint64_t Put(std::shared_ptr<StoredAlert> alert) noexcept;
    // These hold mutex_.
    std::uint64_t Shown() const { return given_ < showUpTo_ ? given_ : showUpTo_; }
    const std::shared_ptr<const StoredAlert>& Slot(std::uint64_t sequence) const;
    std::uint64_t FirstKeptBehind(std::uint64_t after) const;

    mutable std::mutex mutex_;
    mutable std::condition_variable news_;
    // The alert of number n lies in slot n % size; a missing one is null.
    std::vector<std::shared_ptr<const StoredAlert>> slots_;
    const std::uint64_t before_;  // the number before the first
    std::uint64_t given_;
    std::uint64_t showUpTo_ = std::numeric_limits<std::uint64_t>::max();
    Bell* const bell_;
    bool isClosed_ = false;
};

}  // namespace oam::server
