#include "history/history_pages.h"

#include <algorithm>
#include <limits>

#include "history/object_key.h"
#include "store/moment.h"

namespace oam::server {
namespace {

std::int64_t bound(std::uint64_t number) {
    constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::max();
    return number == 0 ? kNone : static_cast<std::int64_t>(std::min<std::uint64_t>(number, kNone));
}

std::optional<std::string> optionalBytes(const Statement& row, int column) {
    return row.IsNull(column) ? std::nullopt : std::optional(row.Bytes(column));
}

}  // namespace

std::vector<HistoryEntry> ReadHistory(Database& database, const HistoryQuery& query) {
    const Database::Transaction transaction(database, Database::Purpose::kRead);
    Statement rows(database, query.object.empty()
                                 ? "SELECT entry, generation, time, user, action, operation, object"
                                   " FROM history_entries WHERE generation < ?1 AND entry < ?2"
                                   " ORDER BY entry DESC LIMIT ?3"
                                 : "SELECT entry, generation, time, user, action, operation, object"
                                   " FROM history_entries WHERE generation < ?1 AND entry < ?2"
                                   " AND (object_key = ?4 OR previous_key = ?4)"
                                   " ORDER BY entry DESC LIMIT ?3");
    rows.Bind(1, bound(query.beforeGeneration)).Bind(2, bound(query.beforeNumber));
    rows.Bind(3, static_cast<std::int64_t>(query.limit));
    if (!query.object.empty()) rows.Bind(4, ObjectKey(query.object));
    Statement values(database,
                     "SELECT keyword, old_value, new_value FROM history_values"
                     " WHERE entry = ? ORDER BY place");
    std::vector<HistoryEntry> entries;
    while (rows.Step()) {
        HistoryEntry entry{static_cast<std::uint64_t>(rows.Number(0)),
                           static_cast<Generation>(rows.Number(1)),
                           momentOf(rows.Number(2)),
                           {rows.Bytes(3), rows.Bytes(4), rows.Bytes(5)},
                           rows.Bytes(6),
                           {}};
        values.Bind(1, rows.Number(0));
        while (values.Step())
            entry.changes.push_back(
                {values.Bytes(0), optionalBytes(values, 1), optionalBytes(values, 2)});
        entries.push_back(std::move(entry));
    }
    return entries;
}

}  // namespace oam::server
