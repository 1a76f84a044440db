// Reads and commits of one object, beside a file read whole, a file replaced, and SQLite.

#include <chrono>
#include <memory>
#include <thread>

#include "oam/entry.h"
#include "raw_files.h"
#include "rows.h"
#include "site.h"
#include "sqlite_peer.h"
#include "stopwatch.h"

namespace oam::bench {

namespace {

constexpr Shape kShape{};
constexpr unsigned long kClient = 7;
constexpr int kBoard = 15;

bool readOnce(const std::string& name) {
    unsigned long handle;
    char value[512];
    if (_oamOpenObject(kClient, name.c_str(), &handle, OAM_OPEN_READ) != OAM_SUCCESS) return false;
    const bool got = _oamGetKeyword(handle, kSomeKeyword, value, sizeof value) == OAM_SUCCESS;
    return _oamCloseObject(handle) == OAM_SUCCESS && got;
}

void ourRead(benchmark::State& state, bool changed) {
    const Site& site = useSite(kShape);
    const std::string name = boardName(kBoard);
    const std::string file = site.DataFile(kBoard);
    changeTime(file.c_str());
    // A file that changed a moment ago is read again each time; that is the other row.
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    BENCH_CHECK(state, readOnce(name));
    bool good = true;
    timeApart(
        state,
        [&] {
            if (changed) changeTime(file.c_str());
        },
        [&] { good = readOnce(name) && good; });
    BENCH_CHECK(state, good);
}

void rawRead(benchmark::State& state, bool changed) {
    const std::string file = useSite(kShape).DataFile(kBoard);
    char buffer[16384];
    bool good = true;
    timeApart(
        state,
        [&] {
            if (changed) changeTime(file.c_str());
        },
        [&] { good = readWhole(file.c_str(), buffer, sizeof buffer) > 0 && good; });
    BENCH_CHECK(state, good);
}

SqlitePeer& peer(SqlitePeer::Journal journal) {
    static const auto made = [](const char* file, SqlitePeer::Journal kind) {
        return std::make_unique<SqlitePeer>(scratchDirectory() / file, kind, kShape);
    };
    static const auto wal = made("wal.db", SqlitePeer::Journal::kWal);
    static const auto rollback = made("rollback.db", SqlitePeer::Journal::kRollback);
    return journal == SqlitePeer::Journal::kWal ? *wal : *rollback;
}

void sqliteRead(benchmark::State& state) {
    SqlitePeer& database = peer(SqlitePeer::Journal::kWal);
    const std::string name = boardName(kBoard);
    char value[512];
    bool good = true;
    for (auto _ : state) {
        good = database.Read(name, kSomeKeyword, value, sizeof value) && good;
    }
    BENCH_CHECK(state, good);
}

void ourKeyword(benchmark::State& state) {
    useSite(kShape);
    unsigned long handle;
    BENCH_CHECK(state, _oamOpenObject(kClient, boardName(kBoard).c_str(), &handle, OAM_OPEN_READ) ==
                           OAM_SUCCESS);
    char value[512];
    bool good = true;
    for (auto _ : state) {
        good = _oamGetKeyword(handle, kSomeKeyword, value, sizeof value) == OAM_SUCCESS && good;
    }
    BENCH_CHECK(state, _oamCloseObject(handle) == OAM_SUCCESS);
    BENCH_CHECK(state, good);
}

std::string nextValue() {
    static int count = 0;
    return std::to_string(10000000 + ++count);
}

void ourCommit(benchmark::State& state) {
    useSite(kShape);
    const std::string name = boardName(kBoard);
    bool good = true;
    for (auto _ : state) {
        unsigned long handle;
        BENCH_CHECK(state,
                    _oamOpenObject(kClient, name.c_str(), &handle, OAM_OPEN_WRITE) == OAM_SUCCESS);
        good = _oamSetKeyword(handle, kSomeKeyword, nextValue().c_str()) == OAM_SUCCESS && good;
        good = _oamCloseObject(handle) == OAM_SUCCESS && good;
    }
    BENCH_CHECK(state, good);
}

void rawCommit(benchmark::State& state) {
    const std::string file = (scratchDirectory() / "replaced").string();
    const std::string bytes = dataFileOf(boardName(kBoard), kShape, kBoard);
    bool good = true;
    for (auto _ : state) good = replaceDurably(file, bytes) && good;
    BENCH_CHECK(state, good);
}

void sqliteCommit(benchmark::State& state) {
    SqlitePeer& database = peer(SqlitePeer::Journal::kRollback);
    const std::string name = boardName(kBoard);
    bool good = true;
    for (auto _ : state) good = database.Write(name, kSomeKeyword, nextValue()) && good;
    BENCH_CHECK(state, good);
}

}  // namespace

void addDatabaseRows() {
    addRow("read-changed", "open, read one keyword, close; file changed since", 1.6, 2.3)
        .Ours(Clock::kOwn, [](benchmark::State& state) { ourRead(state, true); })
        .Limit(Clock::kOwn, "open+fstat+read+close",
               [](benchmark::State& state) { rawRead(state, true); })
        .Peer(Clock::kWhole, "SQLite WAL", sqliteRead);
    addRow("read-unchanged", "the same, file unchanged since", 0.5, 0.7)
        .Ours(Clock::kOwn, [](benchmark::State& state) { ourRead(state, false); })
        .Limit(Clock::kOwn, "open+fstat+read+close",
               [](benchmark::State& state) { rawRead(state, false); })
        .Peer(Clock::kWhole, "SQLite WAL", sqliteRead);
    addRow("keyword", "_oamGetKeyword on an open handle", 0, 0.1)
        .Ours(Clock::kWhole, ourKeyword)
        .Peer(Clock::kWhole, "SQLite WAL", sqliteRead);
    addRow("commit", "durable commit (open, set, close)", 1.15, 0.8)
        .Ours(Clock::kWhole, ourCommit)
        .Limit(Clock::kWhole, "temp+fsync+rename+fsync(dir)", rawCommit)
        .Peer(Clock::kWhole, "SQLite rollback FULL", sqliteCommit);
}

}  // namespace oam::bench
