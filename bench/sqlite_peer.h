// The same objects in SQLite: one row a keyword, found by object and keyword.
#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <string>

#include "site.h"

namespace oam::bench {

class SqlitePeer {
  public:
    enum class Journal { kWal, kRollback };  // rollback with a full sync

    SqlitePeer(const std::filesystem::path& file, Journal journal, const Shape& shape);
    ~SqlitePeer();
    SqlitePeer(const SqlitePeer&) = delete;
    SqlitePeer& operator=(const SqlitePeer&) = delete;

    bool Read(const std::string& object, const char* keyword, char* buffer, size_t size);
    // One durable transaction.
    bool Write(const std::string& object, const char* keyword, const std::string& value);

  private:
    void Run(const char* statement);

    sqlite3* database_ = nullptr;
    sqlite3_stmt* read_ = nullptr;
    sqlite3_stmt* write_ = nullptr;
};

}  // namespace oam::bench
