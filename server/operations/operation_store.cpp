#include "operations/operation_store.h"

#include <algorithm>
#include <optional>

#include "store/moment.h"

namespace oam::server {
namespace {

constexpr auto kRunning = static_cast<std::int64_t>(OperationState::kRunning);
constexpr auto kUnknown = static_cast<std::int64_t>(OperationState::kUnknown);

constexpr const char* kColumns =
    "id, kind, board, state, requested, ended, user, text, sequence, code";

OperationRecord recordOf(const Statement& row) {
    OperationRecord record;
    record.id = row.Bytes(0);
    record.kind = static_cast<OperationKind>(row.Number(1));
    record.board = row.Bytes(2);
    record.state = static_cast<OperationState>(row.Number(3));
    record.requested = momentOf(row.Number(4));
    if (!row.IsNull(5)) record.ended = momentOf(row.Number(5));
    record.user = row.Bytes(6);
    record.text = row.Bytes(7);
    record.sequence = static_cast<std::uint64_t>(row.Number(8));
    record.code = static_cast<std::uint32_t>(row.Number(9));
    return record;
}

void bind(Statement& statement, const OperationRecord& record) {
    statement.Bind(1, record.id)
        .Bind(2, static_cast<std::int64_t>(record.kind))
        .Bind(3, record.board)
        .Bind(4, static_cast<std::int64_t>(record.state))
        .Bind(5, microsecondsOf(record.requested));
    if (record.ended)
        statement.Bind(6, microsecondsOf(*record.ended));
    else
        statement.BindNull(6);
    statement.Bind(7, record.user)
        .Bind(8, record.text)
        .Bind(9, static_cast<std::int64_t>(record.sequence))
        .Bind(10, std::int64_t{record.code});
}

}  // namespace

OperationStore::OperationStore(OperationBook& book, std::size_t kept)
    : book_(book), kept_(std::max<std::size_t>(kept, 1)) {}

std::vector<OperationRecord> OperationStore::Load(Database& database) {
    Database::Transaction transaction(database);
    Statement(database, "UPDATE operations SET state = ? WHERE state = ?")
        .Bind(1, kUnknown)
        .Bind(2, kRunning)
        .Run();
    std::vector<OperationRecord> records;
    {
        Statement rows(
            database,
            ("SELECT " + std::string(kColumns) + " FROM operations ORDER BY turn").c_str());
        while (rows.Step()) records.push_back(recordOf(rows));
    }
    transaction.Commit();
    return records;
}

bool OperationStore::Write(BookConnection& connection) {
    Database& database = connection.Open();
    // The first is the book that this was loaded from; a later one may be new and empty.
    if (opening_ != 0 && opening_ != connection.Openings()) book_.ChangeAll();
    opening_ = connection.Openings();
    const std::vector<OperationRecord> changed = book_.TakeChanged();
    if (changed.empty()) return false;
    try {
        Save(database, changed);
    } catch (...) {
        book_.PutBack(changed);
        throw;
    }
    return false;
}

void OperationStore::Save(Database& database, const std::vector<OperationRecord>& records) const {
    Database::Transaction transaction(database);
    // A row that is replaced gets a new turn, behind all others.
    Statement save(database, ("REPLACE INTO operations (" + std::string(kColumns) +
                              ") VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
                                 .c_str());
    for (const OperationRecord& record : records) {
        bind(save, record);
        save.Run();
    }
    Statement(
        database,
        "DELETE FROM operations WHERE state <> ?1 AND turn <="
        " (SELECT turn FROM operations WHERE state <> ?1 ORDER BY turn DESC LIMIT 1 OFFSET ?2)")
        .Bind(1, kRunning)
        .Bind(2, static_cast<std::int64_t>(kept_))
        .Run();
    transaction.Commit();
}

}  // namespace oam::server
