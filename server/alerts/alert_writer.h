// Brings the ring's alerts into the book, and reserves their numbers.
//
// Numbers come first and need no book (store/numbers.h). When even they cannot be written, alerts
// are shown all the same, and the complaint says what that means.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

#include "alerts/alert_book.h"
#include "alerts/alert_ring.h"
#include "store/numbers.h"
#include "store/store_writer.h"

namespace oam::server {

class AlertWriter : public StoreJob {
  public:
    // `ring` starts behind numbers.LastAlert(), and shows what `numbers` has reserved. The newest
    // `kept` alerts stay in the book. `complain`: see StoreWriter.
    AlertWriter(AlertRing& ring, Numbers& numbers, std::size_t kept,
                StoreWriter::Complain complain);

    // All that came meanwhile, at most kMostAtOnce, in one transaction. When the ring is closed,
    // the last call leaves the exact last number behind.
    static constexpr std::size_t kMostAtOnce = 1024;
    bool Write(BookConnection& book) override;

    // Up to which number the book has everything that there is.
    std::uint64_t Written() const { return written_; }

  private:
    void ReserveNumbers();
    void Attach(BookConnection& book);
    void NoteMissing(std::uint64_t missing, bool isMore);

    AlertRing& ring_;
    Numbers& numbers_;
    const std::size_t kept_;
    const StoreWriter::Complain complain_;
    std::atomic<std::uint64_t> written_;
    std::optional<AlertBook> book_;
    unsigned opening_ = 0;  // of the connection that book_ is on
    bool isReserving_ = true;
    bool isLosing_ = false;
    std::uint64_t missing_ = 0;  // of the present loss
};

}  // namespace oam::server
