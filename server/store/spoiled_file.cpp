#include "store/spoiled_file.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "store/database.h"

namespace oam::server {
namespace {

struct Closer {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
};

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

int noteFirst(void* text, int columns, char** values, char**) {
    if (columns > 0 && values[0] != nullptr) *static_cast<std::string*>(text) = values[0];
    return 0;
}

// Through SQLite alone: to open and close the file by other means would end the locks that this
// process's connections have on it.
bool isSpoiled(const std::string& path) {
    sqlite3* handle = nullptr;
    int code = sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, Closer> closer(handle);
    std::string answer;
    if (code == SQLITE_OK) {
        sqlite3_busy_timeout(handle, 1000);
        code = sqlite3_exec(handle, "PRAGMA integrity_check(1)", noteFirst, &answer, nullptr);
    }
    if (code == SQLITE_OK) return answer != "ok";
    if (code == SQLITE_CORRUPT || code == SQLITE_NOTADB) return true;
    throw StoreError('"' + path + "\": " + sqlite3_errstr(code));
}

constexpr const char* kBeside[] = {"-wal", "-shm", "-journal"};

bool isFree(const std::string& name) {
    if (exists(name)) return false;
    for (const char* end : kBeside)
        if (exists(name + end)) return false;
    return true;
}

void moveTo(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) != 0)
        throw StoreError('"' + from + "\": cannot be set aside: " + std::strerror(errno));
}

}  // namespace

std::string setAsideIfSpoiled(const std::string& path) {
    if (!exists(path) || !isSpoiled(path)) return {};
    std::string name;
    for (unsigned n = 1; !isFree(name = path + ".spoiled-" + std::to_string(n)); ++n) {
    }
    // The file itself comes last: without it SQLite would delete what lies beside.
    for (const char* end : kBeside)
        if (exists(path + end)) moveTo(path + end, name + end);
    moveTo(path, name);
    return name;
}

}  // namespace oam::server
