#include "history/history_book.h"

#include "history/object_key.h"
#include "store/moment.h"

namespace oam::server {
namespace {

void bindOptional(Statement& statement, int place, const std::optional<std::string>& bytes) {
    if (bytes)
        statement.Bind(place, *bytes);
    else
        statement.BindNull(place);
}

// One transaction's statements, prepared once for all that it writes.
class Writer {
  public:
    Writer(Database& database, Generation newest)
        : newest_(newest),
          now_(microsecondsOf(std::chrono::system_clock::now())),
          entry_(database,
                 "INSERT INTO history_entries (generation, time, user, action, operation,"
                 " object_key, object, previous_key) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"
                 " RETURNING entry"),
          value_(database, "INSERT INTO history_values VALUES (?, ?, ?, ?, ?)"),
          version_(database, "INSERT OR REPLACE INTO history_versions VALUES (?, ?, ?, ?)"),
          known_(database, "INSERT OR REPLACE INTO history_objects VALUES (?, ?, ?, ?)"),
          moved_(database, "UPDATE history_objects SET file = ? WHERE object_key = ?"),
          unknown_(database, "DELETE FROM history_objects WHERE object_key = ?") {}

    void Write(Commit* commit) {
        if (commit->changes.empty() && commit->restored.empty()) return;
        commit->generation = ++newest_;
        for (const ObjectChange& change : commit->changes) WriteChange(commit->occasion, change);
        for (const std::string& object : commit->restored)
            (void)WriteEntry(commit->occasion, "restore", object, {});
    }

    void Write(const MovedObject& moved) {
        moved_.Bind(1, moved.file).Bind(2, ObjectKey(moved.object)).Run();
    }

  private:
    void WriteEnd(const std::string& object) {
        const std::string key = ObjectKey(object);
        version_.Bind(1, key).Bind(2, newest_).Bind(3, object).BindNull(4).Run();
        unknown_.Bind(1, key).Run();
    }

    void WriteChange(const Occasion& occasion, const ObjectChange& change) {
        const std::int64_t entry =
            WriteEntry(occasion, ActionOf(change), change.object, change.previous);
        std::int64_t place = 0;
        for (const KeywordChange& keyword : change.changes) {
            value_.Bind(1, entry).Bind(2, ++place).Bind(3, keyword.keyword);
            bindOptional(value_, 4, keyword.oldValue);
            bindOptional(value_, 5, keyword.newValue);
            value_.Run();
        }
        if (!change.previous.empty()) WriteEnd(change.previous);
        if (change.kind == ObjectDifference::Kind::kDeleted) return WriteEnd(change.object);
        const std::string key = ObjectKey(change.object);
        version_.Bind(1, key).Bind(2, newest_).Bind(3, change.object).Bind(4, change.bytes).Run();
        known_.Bind(1, key).Bind(2, change.object).Bind(3, change.file).Bind(4, newest_).Run();
    }

    std::int64_t WriteEntry(const Occasion& occasion, const char* action, const std::string& object,
                            const std::string& previous) {
        entry_.Bind(1, newest_).Bind(2, now_).Bind(3, occasion.user);
        entry_.Bind(4, occasion.action.empty() ? std::string_view(action) : occasion.action);
        entry_.Bind(5, occasion.operation).Bind(6, ObjectKey(object)).Bind(7, object);
        if (previous.empty())
            entry_.BindNull(8);
        else
            entry_.Bind(8, ObjectKey(previous));
        (void)entry_.Step();
        const std::int64_t number = entry_.Number(0);
        entry_.Run();  // to its end
        return number;
    }

    static const char* ActionOf(const ObjectChange& change) {
        switch (change.kind) {
            case ObjectDifference::Kind::kCreated:
                return "create";
            case ObjectDifference::Kind::kDeleted:
                return "delete";
            case ObjectDifference::Kind::kChanged:
                break;
        }
        return "change";
    }

    Generation newest_;
    const std::int64_t now_;
    Statement entry_;
    Statement value_;
    Statement version_;
    Statement known_;
    Statement moved_;
    Statement unknown_;
};

Generation numberOf(Database& database, const char* question) {
    Statement statement(database, question);
    const Generation number = statement.Step() ? statement.Number(0) : 0;
    return number;
}

Generation newestOf(Database& database) {
    return numberOf(database, "SELECT max(generation) FROM history_entries");
}

}  // namespace

KnownObjects HistoryBook::Known() {
    KnownObjects known;
    Statement objects(database_, "SELECT object_key, name, file, generation FROM history_objects");
    while (objects.Step())
        known[objects.Bytes(0)] = {objects.Bytes(1), objects.Bytes(2),
                                   static_cast<Generation>(objects.Number(3))};
    return known;
}

std::string HistoryBook::LastBytes(const std::string& object) {
    Statement version(database_,
                      "SELECT bytes FROM history_objects JOIN history_versions"
                      " USING (object_key, generation) WHERE object_key = ?");
    return version.Bind(1, ObjectKey(object)).Step() ? version.Bytes(0) : std::string();
}

std::chrono::system_clock::time_point HistoryBook::LastTime(const KnownObject& object) {
    Statement entry(database_, "SELECT time FROM history_entries WHERE generation = ? LIMIT 1");
    entry.Bind(1, static_cast<std::int64_t>(object.generation));
    return entry.Step() ? momentOf(entry.Number(0)) : std::chrono::system_clock::time_point();
}

void HistoryBook::Write(std::vector<Commit>* commits, const std::vector<MovedObject>& moved) {
    Database::Transaction transaction(database_);
    {
        Writer writer(database_, newestOf(database_));
        for (Commit& commit : *commits) writer.Write(&commit);
        for (const MovedObject& object : moved) writer.Write(object);
    }
    transaction.Commit();
}

HistoryBook::Range HistoryBook::Generations() {
    const Generation first = numberOf(database_, "SELECT min(generation) FROM history_entries");
    return {first > 1 ? first : 0, newestOf(database_)};
}

void HistoryBook::Forget(Generation kept) {
    Database::Transaction transaction(database_);
    const Generation newest = newestOf(database_);
    if (newest <= kept || kept == 0) return;
    const Generation first = newest - kept + 1;
    Statement(database_,
              "DELETE FROM history_values WHERE entry IN"
              " (SELECT entry FROM history_entries WHERE generation < ?)")
        .Bind(1, first)
        .Run();
    Statement(database_, "DELETE FROM history_entries WHERE generation < ?").Bind(1, first).Run();
    // The last version up to the first generation that is kept is part of its state; a deletion
    // says there what no version says.
    Statement(database_,
              "DELETE FROM history_versions AS old WHERE generation < ?1 AND EXISTS (SELECT 1"
              " FROM history_versions AS newer WHERE newer.object_key = old.object_key AND"
              " newer.generation > old.generation AND newer.generation <= ?1)")
        .Bind(1, first)
        .Run();
    Statement(database_, "DELETE FROM history_versions WHERE generation < ? AND bytes IS NULL")
        .Bind(1, first)
        .Run();
    transaction.Commit();
}

std::string HistoryBook::Fact(const std::string& name) {
    Statement fact(database_, "SELECT value FROM history_facts WHERE name = ?");
    return fact.Bind(1, name).Step() ? fact.Bytes(0) : std::string();
}

void HistoryBook::Note(const std::string& name, const std::string& value) {
    Statement(database_, "INSERT OR REPLACE INTO history_facts VALUES (?, ?)")
        .Bind(1, name)
        .Bind(2, value)
        .Run();
}

}  // namespace oam::server
