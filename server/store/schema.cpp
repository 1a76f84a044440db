#include "store/schema.h"

#include <cstdint>
#include <iterator>

#include "store/database.h"

namespace oam::server {
namespace {

constexpr std::int64_t kApplicationId = 0x6f616d64;  // "oamd", in the file's head

// Texts are BLOBs and times are microseconds since 1970.
constexpr const char* kSteps[][9] = {
    {
        "CREATE TABLE alerts ("
        " sequence INTEGER PRIMARY KEY, time INTEGER NOT NULL, code INTEGER NOT NULL,"
        " severity INTEGER NOT NULL, source BLOB NOT NULL, text BLOB NOT NULL,"
        " operation BLOB NOT NULL)",
        // Rows in the order in which they were written last.
        "CREATE TABLE operations ("
        " turn INTEGER PRIMARY KEY, id BLOB NOT NULL UNIQUE, kind INTEGER NOT NULL,"
        " board BLOB NOT NULL, state INTEGER NOT NULL, requested INTEGER NOT NULL, ended INTEGER,"
        " user BLOB NOT NULL, text BLOB NOT NULL, sequence INTEGER NOT NULL,"
        " code INTEGER NOT NULL)",
    },
    {
        "CREATE TABLE history_entries ("
        " entry INTEGER PRIMARY KEY, generation INTEGER NOT NULL, time INTEGER NOT NULL,"
        " user BLOB NOT NULL, action BLOB NOT NULL, operation BLOB NOT NULL,"
        " object_key BLOB NOT NULL, object BLOB NOT NULL, previous_key BLOB)",
        "CREATE INDEX history_entries_by_generation ON history_entries (generation)",
        "CREATE INDEX history_entries_by_object ON history_entries (object_key)",
        "CREATE INDEX history_entries_by_previous ON history_entries (previous_key)"
        " WHERE previous_key IS NOT NULL",
        "CREATE TABLE history_values ("
        " entry INTEGER NOT NULL, place INTEGER NOT NULL, keyword BLOB NOT NULL, old_value BLOB,"
        " new_value BLOB, PRIMARY KEY (entry, place)) WITHOUT ROWID",
        // An object's data file as of a generation; no bytes: it was deleted.
        "CREATE TABLE history_versions ("
        " object_key BLOB NOT NULL, generation INTEGER NOT NULL, object BLOB NOT NULL, bytes BLOB,"
        " PRIMARY KEY (object_key, generation))",
        "CREATE INDEX history_versions_by_generation ON history_versions (generation)",
        // The objects that there are, and the generation of each one's last version.
        "CREATE TABLE history_objects ("
        " object_key BLOB PRIMARY KEY, name BLOB NOT NULL, file BLOB NOT NULL,"
        " generation INTEGER NOT NULL) WITHOUT ROWID",
        "CREATE TABLE history_facts (name BLOB PRIMARY KEY, value BLOB NOT NULL) WITHOUT ROWID",
    },
};
constexpr std::int64_t kVersion = std::size(kSteps);

std::int64_t numberOf(Database& database, const char* question) {
    Statement statement(database, question);
    return statement.Step() ? statement.Number(0) : 0;
}

void setNumber(Database& database, const std::string& pragma, std::int64_t value) {
    database.Run(("PRAGMA " + pragma + " = " + std::to_string(value)).c_str());
}

std::int64_t versionOf(Database& database) { return numberOf(database, "PRAGMA user_version"); }

}  // namespace

void checkSchema(Database& database, const std::string& path) {
    const bool isNew = numberOf(database, "SELECT count(*) FROM sqlite_schema") == 0;
    if (!isNew && numberOf(database, "PRAGMA application_id") != kApplicationId)
        throw StoreError('"' + path + "\": another program's database");
    const std::int64_t version = versionOf(database);
    if (version > kVersion)
        throw StoreError('"' + path + "\": version " + std::to_string(version) +
                         ", this daemon knows " + std::to_string(kVersion));
}

void bringUpToDate(Database& database) {
    if (versionOf(database) == kVersion) return;
    Database::Transaction transaction(database);
    // Another process may have been faster.
    for (std::int64_t version = versionOf(database); version < kVersion; ++version)
        for (const char* sql : kSteps[version])
            if (sql != nullptr) database.Run(sql);
    setNumber(database, "application_id", kApplicationId);
    setNumber(database, "user_version", kVersion);
    transaction.Commit();
}

}  // namespace oam::server
