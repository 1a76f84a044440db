#include "history/configuration_state.h"

#include <algorithm>
#include <map>

#include "history/object_key.h"

namespace oam::server {
namespace {

// The last version of an object up to a generation.
class Versions {
  public:
    explicit Versions(Database& database)
        : last_(database,
                "SELECT object, bytes FROM history_versions WHERE object_key = ?"
                " AND generation <= ? ORDER BY generation DESC LIMIT 1") {}

    std::optional<ObjectVersion> At(const std::string& key, Generation generation) {
        std::optional<ObjectVersion> version;
        last_.Bind(1, key).Bind(2, static_cast<std::int64_t>(generation));
        while (last_.Step())
            if (!last_.IsNull(1)) version = ObjectVersion{last_.Bytes(0), last_.Bytes(1)};
        return version;
    }

  private:
    Statement last_;
};

std::vector<std::string> keysBetween(Database& database, Generation older, Generation newer) {
    Statement rows(database,
                   "SELECT DISTINCT object_key FROM history_versions"
                   " WHERE generation > ? AND generation <= ? ORDER BY object_key");
    rows.Bind(1, static_cast<std::int64_t>(older)).Bind(2, static_cast<std::int64_t>(newer));
    std::vector<std::string> keys;
    while (rows.Step()) keys.push_back(rows.Bytes(0));
    return keys;
}

std::optional<ObjectDifference> difference(const std::optional<ObjectVersion>& before,
                                           const std::optional<ObjectVersion>& after) {
    using Kind = ObjectDifference::Kind;
    if (!before && !after) return std::nullopt;
    ObjectDifference found{(after ? after : before)->object,
                           !before  ? Kind::kCreated
                           : !after ? Kind::kDeleted
                                    : Kind::kChanged,
                           CompareKeywords(before ? KeywordsOf(before->bytes) : Keywords(),
                                           after ? KeywordsOf(after->bytes) : Keywords())};
    if (found.kind == Kind::kChanged && found.changes.empty()) return std::nullopt;
    return found;
}

}  // namespace

std::vector<ObjectVersion> ReadState(Database& database, Generation generation) {
    Statement rows(database,
                   "SELECT object, bytes, max(generation) FROM history_versions"
                   " WHERE generation <= ? GROUP BY object_key ORDER BY object_key");
    rows.Bind(1, static_cast<std::int64_t>(generation));
    std::vector<ObjectVersion> state;
    while (rows.Step())
        if (!rows.IsNull(1)) state.push_back({rows.Bytes(0), rows.Bytes(1)});
    return state;
}

std::optional<ObjectVersion> ReadVersion(Database& database, const std::string& object,
                                         Generation generation) {
    return Versions(database).At(ObjectKey(object), generation);
}

std::vector<ObjectDifference> CompareStates(Database& database, Generation from, Generation to,
                                            const std::string& object) {
    const Database::Transaction transaction(database, Database::Purpose::kRead);
    Versions versions(database);
    std::vector<ObjectDifference> differences;
    const auto keys = object.empty() ? keysBetween(database, std::min(from, to), std::max(from, to))
                                     : std::vector{ObjectKey(object)};
    for (const std::string& key : keys)
        if (auto found = difference(versions.At(key, from), versions.At(key, to)))
            differences.push_back(std::move(*found));
    return differences;
}

}  // namespace oam::server
