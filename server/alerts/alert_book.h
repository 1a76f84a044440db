// The alerts on disk: a bounded ring of the newest ones, and the number behind which all are free.
//
// AlertBook is what the table holds; it belongs to one thread. AlertWriter is the one thread that
// writes what the ring in memory has, in one transaction for all that came meanwhile.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "alerts/alert_ring.h"
#include "alerts/stored_alert.h"
#include "store/database.h"

namespace oam::server {

// What a reader asks for.
struct AlertFilter {
    std::vector<std::uint32_t> codes;  // empty: all
    std::uint32_t leastSeverity = 0;
    std::string source;    // empty: all; without regard to case
    std::string textPart;  // empty: all

    bool Matches(const StoredAlert& alert) const;
};

class AlertBook {
  public:
    explicit AlertBook(Database& database);

    // The number behind which no alert was ever given one: after an orderly end the newest
    // alert's, after a kill the one that was reserved.
    std::uint64_t LastNumber();
    // From now on numbers up to this one may be given without asking again.
    void Reserve(std::uint64_t last);

    // In one transaction: writes them, forgets the oldest beyond `kept`.
    void Write(const std::vector<std::shared_ptr<const StoredAlert>>& alerts, std::size_t kept);

    // Those behind `after` that match, oldest first; `scanned` is the number that was looked at
    // last, so that a page without a match goes on.
    struct Page {
        std::vector<StoredAlert> alerts;
        std::uint64_t oldest = 0;   // of the book; 0: it is empty
        std::uint64_t newest = 0;
        std::uint64_t scanned = 0;
    };
    Page Read(std::uint64_t after, std::size_t limit, const AlertFilter& filter);

  private:
    Database& database_;
};

class AlertWriter {
  public:
    // `complain` gets a sentence when the book cannot be written, and when it can again.
    AlertWriter(AlertRing& ring, const std::string& path, std::size_t kept,
                std::function<void(const std::string&)> complain);
    // Writes what is left and the exact last number, then ends. The ring is closed by then.
    ~AlertWriter();

    // Up to which number the book has everything that there is.
    std::uint64_t Written() const { return written_; }

  private:
    void Work();

    AlertRing& ring_;
    const std::string path_;
    const std::size_t kept_;
    const std::function<void(const std::string&)> complain_;
    std::atomic<std::uint64_t> written_{0};
    std::thread thread_;
};

}  // namespace oam::server
