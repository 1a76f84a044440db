#include "alerts/alert_book.h"

#include <utility>

#include "store/moment.h"

namespace oam::server {
namespace {

constexpr const char* kColumns = "sequence, time, code, severity, source, text, operation";

// SQLite's numbers are signed; no count of alerts ever gets there.
std::int64_t storable(std::uint64_t number) { return static_cast<std::int64_t>(number); }

std::uint64_t answerOf(Database& database, const char* question) {
    Statement statement(database, question);
    return statement.Step() ? static_cast<std::uint64_t>(statement.Number(0)) : 0;
}

StoredAlert alertOf(const Statement& row) {
    StoredAlert alert;
    alert.sequence = static_cast<std::uint64_t>(row.Number(0));
    alert.time = momentOf(row.Number(1));
    alert.code = static_cast<std::uint32_t>(row.Number(2));
    alert.severity = static_cast<std::uint32_t>(row.Number(3));
    alert.source = row.Bytes(4);
    alert.text = row.Bytes(5);
    alert.operation = row.Bytes(6);
    return alert;
}

}  // namespace

AlertBook::AlertBook(Database& database) : database_(database) {}

std::uint64_t AlertBook::Newest() {
    return answerOf(database_, "SELECT max(sequence) FROM alerts");
}

void AlertBook::Write(const std::vector<std::shared_ptr<const StoredAlert>>& alerts,
                      std::size_t kept) {
    Database::Transaction transaction(database_);
    std::int64_t count =
        count_ ? *count_ : storable(answerOf(database_, "SELECT count(*) FROM alerts"));
    count_.reset();  // until it is certain again

    Statement take(database_, "DELETE FROM alerts WHERE sequence = ?");
    Statement insert(database_, ("INSERT INTO alerts (" + std::string(kColumns) +
                                 ") VALUES (?, ?, ?, ?, ?, ?, ?)")
                                    .c_str());
    for (const auto& alert : alerts) {
        take.Bind(1, storable(alert->sequence)).Run();
        count -= database_.Changes();
        insert.Bind(1, storable(alert->sequence))
            .Bind(2, microsecondsOf(alert->time))
            .Bind(3, std::int64_t{alert->code})
            .Bind(4, std::int64_t{alert->severity})
            .Bind(5, alert->source)
            .Bind(6, alert->text)
            .Bind(7, alert->operation)
            .Run();
        ++count;
    }
    if (const std::int64_t most = static_cast<std::int64_t>(kept); count > most) {
        Statement(database_,
                  "DELETE FROM alerts WHERE sequence IN"
                  " (SELECT sequence FROM alerts ORDER BY sequence LIMIT ?)")
            .Bind(1, count - most)
            .Run();
        count -= database_.Changes();
    }
    transaction.Commit();
    count_ = count;
}

AlertBook::Page AlertBook::Read(std::uint64_t after, std::size_t limit, const AlertFilter& filter) {
    const Database::Transaction transaction(database_, Database::Purpose::kRead);
    Page page;
    page.oldest = answerOf(database_, "SELECT min(sequence) FROM alerts");
    page.newest = Newest();
    page.scanned = after;
    if (after >= page.newest) return page;

    Statement rows(database_, ("SELECT " + std::string(kColumns) +
                               " FROM alerts WHERE sequence > ? ORDER BY sequence")
                                  .c_str());
    rows.Bind(1, storable(after));
    for (std::size_t looks = 0; looks < kMostScanned && page.alerts.size() < limit && rows.Step();
         ++looks) {
        StoredAlert alert = alertOf(rows);
        if (alert.sequence != page.scanned + 1) {
            if (looks > 0) break;
            page.firstBehindGap = alert.sequence;
        }
        page.scanned = alert.sequence;
        if (filter.Matches(alert)) page.alerts.push_back(std::move(alert));
    }
    return page;
}

}  // namespace oam::server
