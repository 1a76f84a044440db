// The alerts on disk: a bounded ring of the newest ones. An AlertBook belongs to one thread, as its
// database does; one writes, any number read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "alerts/alert_filter.h"
#include "alerts/stored_alert.h"
#include "store/database.h"

namespace oam::server {

class AlertBook {
  public:
    explicit AlertBook(Database& database);

    // The newest alert's number; 0 when there is none.
    std::uint64_t Newest();

    // In one transaction: writes them, forgets the oldest beyond `kept`. An alert whose number is
    // there already takes its place.
    void Write(const std::vector<std::shared_ptr<const StoredAlert>>& alerts, std::size_t kept);

    // Those behind `after` that match, oldest first.
    struct Page {
        std::vector<StoredAlert> alerts;
        // The first number behind `after` that was looked at, when those between are missing. A
        // page ends before the next number that is missing.
        std::optional<std::uint64_t> firstBehindGap;
        std::uint64_t oldest = 0;  // of the book; 0: it is empty
        std::uint64_t newest = 0;
        // The number that was looked at last (`after`: none was): what to ask behind the next time,
        // also when nothing matched.
        std::uint64_t scanned = 0;
    };
    // Looks at no more than kMostScanned, so that a rare match does not make a reader's call long.
    static constexpr std::size_t kMostScanned = 10000;
    Page Read(std::uint64_t after, std::size_t limit, const AlertFilter& filter);

  private:
    Database& database_;
    std::optional<std::int64_t> count_;  // what the writer knows of the table
};

}  // namespace oam::server
