// The history on disk: entries with the values that changed, and whole versions.
//
// A version is the bytes of an object's data file, or nothing: the object was deleted. So the state
// at any generation is, for each object, the last version up to it. Belongs to one thread at a
// time, with its database; what fails is a StoreError, and nothing was written.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "history/history_entry.h"
#include "store/database.h"

namespace oam::server {

// Of an object that exists: its last version.
struct KnownObject {
    std::string name;
    std::string file;
    Generation generation = 0;
};
using KnownObjects = std::map<std::string, KnownObject>;  // by ObjectKey

struct ObjectChange {
    std::string object;    // its name now; a deleted one's last
    std::string previous;  // a renamed one's name before
    std::string file;
    ObjectDifference::Kind kind = ObjectDifference::Kind::kChanged;
    std::string bytes;  // of the data file; not of a deleted one
    std::vector<KeywordChange> changes;
};

// Unchanged, but its data file has another name now, or other white space.
struct MovedObject {
    std::string object;
    std::string file;
};

// What becomes one generation.
struct Commit {
    Occasion occasion;
    std::vector<ObjectChange> changes;
    // Put back from their last version: entries without a change.
    std::vector<std::string> restored;
    Generation generation = 0;  // set by Write
};

class HistoryBook {
  public:
    explicit HistoryBook(Database& database) : database_(database) {}

    KnownObjects Known();
    // Of an object that exists: its last version, and when that was recorded.
    std::string LastBytes(const std::string& object);
    std::chrono::system_clock::time_point LastTime(const KnownObject& object);

    // All of it in one transaction, each commit as a generation; those without content get none.
    void Write(std::vector<Commit>* commits, const std::vector<MovedObject>& moved);

    // The oldest and the newest generation whose state is known; 0 and 0 when there is none.
    struct Range {
        Generation oldest = 0;
        Generation newest = 0;
    };
    Range Generations();
    // Forgets what is older than the newest `kept` generations; the state at each of those stays
    // known.
    void Forget(Generation kept);

    // A small fact that outlives the daemon; empty when it was never noted.
    std::string Fact(const std::string& name);
    void Note(const std::string& name, const std::string& value);

  private:
    Database& database_;
};

}  // namespace oam::server
