// The daemon's own book: one SQLite file, "oam/oamd.db" of the installation, in WAL mode.
//
// A Database is one connection and belongs to one thread at a time; each room that keeps something
// has its own. What cannot be read or written is a StoreError with the file's name and SQLite's
// words: the daemon goes on without its book and says so. A file that is no database, or is
// spoiled, is set aside as "<name>.spoiled-<n>" and a new one is begun; nothing is deleted.
//
// A commit is on the disk when it returns, and survives the loss of power.
#pragma once

#include <cstdint>
#include <memory>
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

// What is in the file cannot be right. Close the connection, and SetAsideIfSpoiled will help.
class SpoiledStore : public StoreError {
  public:
    using StoreError::StoreError;
};

class Database {
  public:
    // Opens or makes the file, brings its tables up to date (store/schema.h; a file of a newer
    // version, or of another program, is a StoreError) and waits up to a second for other
    // connections. `setAside` tells the name that a spoiled file was given, when there was one.
    // Only the file's head is looked at: damage farther in is met by whoever reads there, as a
    // SpoiledStore.
    explicit Database(const std::string& path, std::string* setAside = nullptr);
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Reads all of the file; when it is spoiled, gives it another name, and answers that. Other
    // connections to it answer a StoreError from then on.
    static std::string SetAsideIfSpoiled(const std::string& path);

    void Run(const char* sql);

    // Rows that the last statement wrote or removed.
    std::int64_t Changes() const;

    // All or nothing: rolled back unless committed. A reading one sees the book as it was at its
    // first statement, and ends without a commit.
    enum class Purpose { kWrite, kRead };
    class Transaction {
      public:
        explicit Transaction(Database& database, Purpose purpose = Purpose::kWrite);
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
    struct Closer {
        void operator()(sqlite3* handle) const;
    };

    void Open();
    // For SQLite's last error.
    [[noreturn]] void Fail(int code) const;
    // A file that was moved or deleted takes what is written, and nobody finds it again.
    void CheckPlace() const;

    std::string path_;
    std::unique_ptr<sqlite3, Closer> handle_;
};

// One prepared statement, used again and again. Its values stay bound between the uses.
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

    // Steps once: true with a row, false at the end; at the end, or after a StoreError, it is ready
    // for the next use.
    bool Step();
    // Steps to the end.
    void Run();

    // Of the row; columns count from 0.
    std::int64_t Number(int column) const;
    std::string Bytes(int column) const;
    bool IsNull(int column) const;

  private:
    void Check(int code);

    Database& database_;
    sqlite3_stmt* handle_ = nullptr;
    bool isUnderWay_ = false;
};

}  // namespace oam::server
