#include "store/database.h"

#include <sqlite3.h>

#include <cstring>
#include <mutex>

#include "store/schema.h"
#include "store/spoiled_file.h"

namespace oam::server {
namespace {

constexpr int kPatience = 1000;  // milliseconds

// Openings of this process go one by one: each looks at the file and may give it another name.
std::mutex& openings() {
    static std::mutex& mutex = *new std::mutex;
    return mutex;
}

bool tellsSpoiled(int code) {
    const int kind = code & 0xff;
    return kind == SQLITE_CORRUPT || kind == SQLITE_NOTADB;
}

std::string wordsFor(sqlite3* handle, int code, const std::string& path) {
    std::string words = '"' + path + "\": ";
    words += handle != nullptr ? sqlite3_errmsg(handle) : sqlite3_errstr(code);
    const int reason = handle != nullptr ? sqlite3_system_errno(handle) : 0;
    const int kind = code & 0xff;
    if (reason != 0 && (kind == SQLITE_IOERR || kind == SQLITE_CANTOPEN || kind == SQLITE_FULL))
        words += std::string(" (") + std::strerror(reason) + ')';
    return words;
}

}  // namespace

void Database::Closer::operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }

Database::Database(const std::string& path, std::string* setAside) : path_(path) {
    const std::lock_guard hold(openings());
    try {
        Open();
    } catch (const SpoiledStore&) {
        handle_.reset();
        const std::string name = setAsideIfSpoiled(path);
        if (setAside != nullptr) *setAside = name;
        Open();
    }
}

void Database::Open() {
    sqlite3* handle = nullptr;
    const int code =
        sqlite3_open_v2(path_.c_str(), &handle,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    handle_.reset(handle);
    if (code != SQLITE_OK) Fail(code);
    sqlite3_extended_result_codes(handle, 1);
    sqlite3_busy_timeout(handle, kPatience);
    checkSchema(*this, path_);
    Run("PRAGMA journal_mode = WAL");
    Run("PRAGMA synchronous = FULL");
    bringUpToDate(*this);
}

std::string Database::SetAsideIfSpoiled(const std::string& path) {
    const std::lock_guard hold(openings());
    return setAsideIfSpoiled(path);
}

void Database::Fail(int code) const {
    const std::string words = wordsFor(handle_.get(), code, path_);
    if (tellsSpoiled(code)) throw SpoiledStore(words);
    throw StoreError(words);
}

void Database::CheckPlace() const {
    int hasMoved = 0;
    sqlite3_file_control(handle_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved);
    if (hasMoved != 0) throw StoreError('"' + path_ + "\": the file was moved or deleted");
}

void Database::Run(const char* sql) { Statement(*this, sql).Run(); }

std::int64_t Database::Changes() const { return sqlite3_changes64(handle_.get()); }

Database::Transaction::Transaction(Database& database, Purpose purpose) : database_(database) {
    // A writer takes its turn at once: a reader that becomes a writer may be refused for good.
    database.Run(purpose == Purpose::kWrite ? "BEGIN IMMEDIATE" : "BEGIN");
}

Database::Transaction::~Transaction() {
    sqlite3* const handle = database_.handle_.get();
    // After some errors SQLite has rolled back by itself.
    if (isOpen_ && sqlite3_get_autocommit(handle) == 0)
        (void)sqlite3_exec(handle, "ROLLBACK", nullptr, nullptr, nullptr);
}

void Database::Transaction::Commit() {
    database_.Run("COMMIT");
    isOpen_ = false;
}

Statement::Statement(Database& database, const char* sql) : database_(database) {
    const int code = sqlite3_prepare_v2(database.handle_.get(), sql, -1, &handle_, nullptr);
    if (code != SQLITE_OK) database.Fail(code);
}

Statement::~Statement() { sqlite3_finalize(handle_); }

void Statement::Check(int code) {
    if (code != SQLITE_OK) database_.Fail(code);
}

Statement& Statement::Bind(int place, std::int64_t value) {
    Check(sqlite3_bind_int64(handle_, place, value));
    return *this;
}

Statement& Statement::Bind(int place, std::string_view bytes) {
    // A null pointer would be bound as NULL.
    const char* const first = bytes.empty() ? "" : bytes.data();
    Check(sqlite3_bind_blob64(handle_, place, first, bytes.size(), SQLITE_TRANSIENT));
    return *this;
}

Statement& Statement::BindNull(int place) {
    Check(sqlite3_bind_null(handle_, place));
    return *this;
}

bool Statement::Step() {
    if (!isUnderWay_ && sqlite3_get_autocommit(database_.handle_.get()) != 0)
        database_.CheckPlace();
    const int code = sqlite3_step(handle_);
    isUnderWay_ = code == SQLITE_ROW;
    if (isUnderWay_) return true;
    if (code == SQLITE_DONE) {
        sqlite3_reset(handle_);
        return false;
    }
    struct Reset {
        sqlite3_stmt* handle;
        ~Reset() { sqlite3_reset(handle); }
    } reset{handle_};
    database_.Fail(code);
}

void Statement::Run() {
    while (Step()) {
    }
}

std::int64_t Statement::Number(int column) const { return sqlite3_column_int64(handle_, column); }

std::string Statement::Bytes(int column) const {
    const void* const first = sqlite3_column_blob(handle_, column);
    const int count = sqlite3_column_bytes(handle_, column);
    return first == nullptr
               ? std::string()
               : std::string(static_cast<const char*>(first), static_cast<std::size_t>(count));
}

bool Statement::IsNull(int column) const {
    return sqlite3_column_type(handle_, column) == SQLITE_NULL;
}

}  // namespace oam::server
