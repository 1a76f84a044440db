// The configuration's history: what was committed, on whose behalf, and what it was before.
//
// The service tells of no commit what it changed, so the history looks at the data files: the watch
// finds those that changed, the finder compares them with the book, and the book keeps it. Who
// changes something announces it first; what nobody announced is the service's own ("service").
//
// Safe on any thread; one looks and writes at a time. A book that cannot be read or written is a
// StoreError, a directory that cannot be read a Failure; what was found is then recorded with the
// next look. A spoiled book is set aside and a new one begun: its first generation is the
// configuration as it lies there.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "history/announcements.h"
#include "history/change_finder.h"
#include "history/configuration_state.h"
#include "history/history_book.h"
#include "history/keyword_rollback.h"
#include "installation.h"
#include "store/store_writer.h"

namespace oam::server {

class History {
  public:
    // `book`: the database's file; `complain` is told of one that was set aside.
    History(const std::string& book, const Installation& place,
            std::function<void(const std::string&)> complain);

    // Before each start of the service: puts spoiled and missing data files back
    // (history/spoiled_files.h), then records what else has changed since the last look, by
    // "(found at start)". Sentences for the log. An import that did not end is the service's to
    // undo: its old files are looked at instead.
    std::vector<std::string> RestoreSpoiled();

    // Somebody is about to change one object, or (no name) any. Made before the service is asked,
    // so that whoever looks first knows whose change it is; several may be open at a time.
    class Announcement {
      public:
        Announcement(History& history, Occasion occasion, const std::string& object = {});
        ~Announcement();
        Announcement(const Announcement&) = delete;
        Announcement& operator=(const Announcement&) = delete;

        // When the service has answered. The newest generation with a change that was announced
        // here; 0: there was none.
        Generation Record();

      private:
        History& history_;
        Announced announced_;
    };

    // Announces any change, and records: for one who is alone.
    Generation Record(const std::string& user, const std::string& action,
                      const std::string& operation = {});
    // The newest generation of changes that nobody announced; 0: there was none. `closely`: also
    // what was written into the files by hand.
    Generation RecordUnannounced(bool closely = false);

    HistoryBook::Range Generations();
    std::vector<HistoryEntry> List(const HistoryQuery& query);

    // A generation that is not known (any more) is a Failure, for all of these. 0 as `to`: the
    // newest one.
    std::vector<ObjectDifference> Compare(Generation from, Generation to,
                                          const std::string& object = {});
    std::vector<ObjectVersion> State(Generation generation);
    // How an object's keywords come back; a Failure when it was not there then, or is not now.
    KeywordRollback RollBack(const std::string& object, Generation generation);

    // Forgets all but the newest generations.
    void Forget(Generation kept);

    // Of data files that hold no object now, since the last look; each with its reason.
    std::vector<std::string> Unreadable() const;

  private:
    using Lock = std::lock_guard<std::mutex>;

    template <class Ask>
    auto WithBook(Ask ask);
    void Begin(Database& database);
    void Require(Generation generation);
    ChangeFinder::BytesOf LastBytes();
    void PutBackSpoiled(std::vector<std::string>* sentences);
    // Looks and writes; the generation of what nobody announced.
    Generation Look(const Occasion& unannounced);
    Generation Write(const Occasion& unannounced);
    void Apply(const ObjectChange& change, Generation generation);
    void NoteTrace();

    mutable std::mutex mutex_;
    const std::string directory_;
    const std::string startupLog_;
    BookConnection connection_;
    unsigned opening_ = 0;
    std::optional<HistoryBook> book_;
    // As the book has them.
    std::optional<Generation> newest_;
    KnownObjects known_;
    std::string trace_;

    ConfigurationWatch watch_;
    ChangeFinder finder_;
    std::vector<std::string> restored_;  // objects, to be recorded
    Announcements announcements_;
};

}  // namespace oam::server
