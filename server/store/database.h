// The daemon's own book: one SQLite file, "oam/oamd.db" of the installation, in WAL mode.
//
// A Database is one connection and belongs to one thread at a time; each room that keeps something
// has its own. What cannot be read or written is a StoreError with SQLite's words and the file's
// name: the daemon goes on without its book and says so. A file that is no database, or is spoiled,
// is set aside as "<name>.spoiled-<n>" and a new one is begun; nothing is deleted.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace oam::server {

class StoreError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class Database {
  public:
    // Opens or makes the file, brings its tables up to date (PRAGMA user_version; a file of a newer
    // version is a StoreError) and waits up to a second for other connections. `setAside` tells the
    // name that a spoiled file was given, when there was one.
    explicit Database(const std::string& path, std::string* setAside = nullptr);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void Run(const char* sql);

    // All or nothing: rolled back unless committed.
    class Transaction {
      public:
        explicit Transaction(Database& database);
        ~Transaction();
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;
        void Commit();

      private:
        Database& database_;
        bool isOpen_ = true;
    };

  private:
    friend class Statement;
    sqlite3* handle_ = nullptr;
    std::string path_;
};

// One prepared statement, used again and again.
//
//   Statement insert(database, "INSERT INTO alerts VALUES (?, ?)");
//   insert.Bind(1, sequence).Bind(2, text).Run();
class Statement {
  public:
    Statement(Database& database, const char* sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // Places count from 1. Texts are stored as BLOBs: names and texts are bytes.
    Statement& Bind(int place, std::int64_t value);
    Statement& Bind(int place, std::string_view bytes);
    Statement& BindNull(int place);

    // Steps once: true with a row, false at the end; at the end it is ready for the next use.
    bool Step();
    // Steps to the end.
    void Run();

    // Of the row; columns count from 0.
    std::int64_t Number(int column) const;
    std::string Bytes(int column) const;
    bool IsNull(int column) const;

  private:
    Database& database_;
    sqlite3_stmt* handle_ = nullptr;
};

}  // namespace oam::server
