#include "alerts/alert_writer.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace oam::server {

AlertWriter::AlertWriter(AlertRing& ring, Numbers& numbers, std::size_t kept,
                         StoreWriter::Complain complain)
    : ring_(ring),
      numbers_(numbers),
      kept_(kept),
      complain_(std::move(complain)),
      written_(ring.Newest()) {
    ring_.ShowUpTo(numbers_.Reserved());
    ReserveNumbers();
}

// A closed ring gives no number any more, so its last one is exact.
void AlertWriter::ReserveNumbers() {
    const bool isLast = ring_.IsClosed();
    const std::uint64_t given = ring_.Given();
    const std::uint64_t reserved = numbers_.Reserved();
    if (isLast ? reserved == given : reserved >= given + numbers_.Block() / 2) return;
    try {
        numbers_.Reserve(isLast ? given : given + numbers_.Block());
        ring_.ShowUpTo(numbers_.Reserved());
        if (!isReserving_) complain_("numbers of alerts are reserved on the disk again");
        isReserving_ = true;
    } catch (const StoreError& error) {
        if (given < reserved) return;  // it is not urgent yet
        // Alerts that nobody sees would be worse.
        ring_.ShowUpTo(std::numeric_limits<std::uint64_t>::max());
        if (isReserving_)
            complain_(std::string("cannot reserve numbers of alerts, and after a kill some will be "
                                  "given twice: ") +
                      error.what());
        isReserving_ = false;
    }
}

// A new connection may have found another book, with less in it.
void AlertWriter::Attach(BookConnection& book) {
    Database& database = book.Open();
    if (opening_ == book.Openings()) return;
    book_.emplace(database);
    const std::uint64_t inBook = book_->Newest();
    written_ = std::min(written_.load(), std::max(inBook, ring_.Oldest() - 1));
    opening_ = book.Openings();
}

bool AlertWriter::Write(BookConnection& book) {
    ReserveNumbers();
    Attach(book);
    std::vector<std::shared_ptr<const StoredAlert>> alerts;
    std::uint64_t position = written_;
    std::uint64_t missing = 0;
    while (alerts.size() + AlertRing::kMostAtOnce <= kMostAtOnce) {
        const AlertRing::Batch batch = ring_.Read(position, AlertRing::kMostAtOnce);
        if (batch.last == position) break;
        missing += batch.last - position - batch.alerts.size();
        position = batch.last;
        alerts.insert(alerts.end(), batch.alerts.begin(), batch.alerts.end());
    }
    if (!alerts.empty()) book_->Write(alerts, kept_);
    written_ = position;
    const bool isMore = ring_.Newest() > position;
    NoteMissing(missing, isMore);
    return isMore;
}

// Once when a loss begins that does not end at once, and once with the sum.
void AlertWriter::NoteMissing(std::uint64_t missing, bool isMore) {
    missing_ += missing;
    if (missing_ == 0) return;
    if (!isMore) {
        complain_(std::to_string(missing_) + " alerts are missing in the book, up to number " +
                  std::to_string(written_) + ": more came than memory could keep");
        missing_ = 0;
    } else if (!isLosing_) {
        complain_("alerts come faster than the book can be written, some will be missing in it");
    }
    isLosing_ = isMore;
}

}  // namespace oam::server
