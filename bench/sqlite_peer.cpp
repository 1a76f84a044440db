#include "sqlite_peer.h"

#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace oam::bench {

SqlitePeer::SqlitePeer(const std::filesystem::path& file, Journal journal, const Shape& shape) {
    if (sqlite3_open(file.c_str(), &database_) != SQLITE_OK) throw std::runtime_error("sqlite");
    Run(journal == Journal::kWal ? "PRAGMA journal_mode=WAL" : "PRAGMA journal_mode=DELETE");
    Run("PRAGMA synchronous=FULL");
    Run("CREATE TABLE keywords (object TEXT COLLATE NOCASE, keyword TEXT COLLATE NOCASE, "
        "value TEXT, PRIMARY KEY (object, keyword)) WITHOUT ROWID");
    Run("BEGIN");
    for (int board = 0; board < shape.boards; ++board) {
        for (int i = 0; i < shape.keywords; ++i) {
            char statement[256];
            std::snprintf(statement, sizeof statement,
                          "INSERT INTO keywords VALUES ('%s', 'Parameter[%02d].Value', '%s')",
                          boardName(board).c_str(), i, std::string(20, 'v').c_str());
            Run(statement);
        }
    }
    Run("COMMIT");
    sqlite3_prepare_v2(database_, "SELECT value FROM keywords WHERE object=?1 AND keyword=?2", -1,
                       &read_, nullptr);
    sqlite3_prepare_v2(database_, "UPDATE keywords SET value=?3 WHERE object=?1 AND keyword=?2", -1,
                       &write_, nullptr);
    if (read_ == nullptr || write_ == nullptr) throw std::runtime_error("sqlite");
}

SqlitePeer::~SqlitePeer() {
    sqlite3_finalize(read_);
    sqlite3_finalize(write_);
    sqlite3_close(database_);
}

void SqlitePeer::Run(const char* statement) {
    if (sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(database_));
    }
}

bool SqlitePeer::Read(const std::string& object, const char* keyword, char* buffer, size_t size) {
    sqlite3_bind_text(read_, 1, object.data(), static_cast<int>(object.size()), SQLITE_STATIC);
    sqlite3_bind_text(read_, 2, keyword, -1, SQLITE_STATIC);
    const bool found = sqlite3_step(read_) == SQLITE_ROW;
    if (found) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(read_, 0));
        const size_t length = static_cast<size_t>(sqlite3_column_bytes(read_, 0));
        if (length < size) std::memcpy(buffer, text, length + 1);
    }
    sqlite3_reset(read_);
    return found;
}

bool SqlitePeer::Write(const std::string& object, const char* keyword, const std::string& value) {
    sqlite3_bind_text(write_, 1, object.data(), static_cast<int>(object.size()), SQLITE_STATIC);
    sqlite3_bind_text(write_, 2, keyword, -1, SQLITE_STATIC);
    sqlite3_bind_text(write_, 3, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
    const bool done = sqlite3_step(write_) == SQLITE_DONE && sqlite3_changes(database_) == 1;
    sqlite3_reset(write_);
    return done;
}

}  // namespace oam::bench
