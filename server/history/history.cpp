#include "history/history.h"

#include <algorithm>
#include <utility>

#include "failure.h"
#include "history/history_pages.h"
#include "history/object_key.h"
#include "history/spoiled_files.h"
#include "history/start_evidence.h"

namespace oam::server {
namespace {

constexpr const char* kTraceFact = "start-up log";

const Occasion kService{"service", "", ""};
const Occasion kFoundAtStart{"(found at start)", "start", ""};

const Occasion kRestored{"service", "restore", ""};

}  // namespace

History::History(const std::string& book, const Installation& place,
                 std::function<void(const std::string&)> complain)
    : directory_(place.Path(kConfigDirectory)),
      startupLog_(place.Path(kStartupLog)),
      connection_(book, std::move(complain)),
      watch_(directory_) {}

// Runs `ask` with the book open and known. A spoiled one is set aside and `ask` runs once more.
template <class Ask>
auto History::WithBook(Ask ask) {
    for (bool isLast = false;; isLast = true) {
        try {
            Begin(connection_.Open());
            return ask();
        } catch (const SpoiledStore&) {
            connection_.SetAsideIfSpoiled();
            if (isLast) throw;
        } catch (const StoreError&) {
            connection_.Drop();
            throw;
        }
    }
}

void History::Begin(Database& database) {
    if (opening_ == connection_.Openings()) return;
    book_.emplace(database);
    known_ = book_->Known();
    trace_ = book_->Fact(kTraceFact);
    const Generation newest = book_->Generations().newest;
    // Another book than the one that was compared with: everything is compared anew.
    if (newest_ != newest) {
        watch_.StartOver();
        finder_.StartOver();
    }
    newest_ = newest;
    opening_ = connection_.Openings();
}

std::vector<std::string> History::RestoreSpoiled() {
    const Lock lock(mutex_);
    std::vector<std::string> sentences;
    WithBook([&] { PutBackSpoiled(&sentences); });
    try {
        WithBook([&] { return Look(kFoundAtStart); });
    } catch (const std::runtime_error& error) {
        // What was done is to be told all the same.
        sentences.push_back(std::string("the history cannot be written: ") + error.what());
    }
    return sentences;
}

void History::PutBackSpoiled(std::vector<std::string>* sentences) {
    const auto mayBeDeleted = [this](const KnownObject& object) {
        return StartTrace(startupLog_) != trace_ &&
               !WasDroppedSince(directory_, object.file, book_->LastTime(object));
    };
    SpoilReport report;
    if (auto news = watch_.Look()) {
        finder_.Take(std::move(*news));
        report = SpoiledFiles(finder_, known_, directory_, directory_)
                     .PutBack(LastBytes(), mayBeDeleted);
    } else {
        const std::string aside = directory_ + kImportAside;
        ChangeFinder files;
        if (auto old = ConfigurationWatch(aside).Look()) files.Take(std::move(*old));
        report = SpoiledFiles(files, known_, aside, directory_).PutBack(LastBytes(), nullptr);
    }
    for (const std::string& object : report.lost) finder_.ExpectBack(ObjectKey(object));
    restored_.insert(restored_.end(), report.restored.begin(), report.restored.end());
    sentences->insert(sentences->end(), report.sentences.begin(), report.sentences.end());
}

Generation History::Look(const Occasion& unannounced) {
    auto news = watch_.Look();
    if (!news) return 0;
    finder_.Take(std::move(*news));
    const Generation generation =
        finder_.HasNews() || !restored_.empty() ? Write(unannounced) : Generation{0};
    NoteTrace();
    return generation;
}

Generation History::Write(const Occasion& unannounced) {
    // The first generation is what lay there, whoever came first.
    const bool isFirst = newest_ == Generation{0};
    auto finds = finder_.Compare(known_, LastBytes(), announcements_.MayRename());
    std::vector<Commit> commits;
    if (isFirst)
        commits.push_back({kFoundAtStart, std::move(finds.changes), {}});
    else
        commits = announcements_.Share(std::move(finds.changes), unannounced);
    commits.push_back({kRestored, {}, restored_});
    book_->Write(&commits, finds.moved);

    const Generation first = commits.front().generation;
    if (isFirst)
        announcements_.Settle(first);
    else
        announcements_.Settle(commits);
    for (const Commit& commit : commits) {
        for (const ObjectChange& change : commit.changes) Apply(change, commit.generation);
        newest_ = std::max(*newest_, commit.generation);
    }
    for (const MovedObject& moved : finds.moved) known_[ObjectKey(moved.object)].file = moved.file;
    restored_.clear();
    finder_.Settle(known_);
    return first;
}

void History::Apply(const ObjectChange& change, Generation generation) {
    if (!change.previous.empty()) known_.erase(ObjectKey(change.previous));
    if (change.kind == ObjectDifference::Kind::kDeleted)
        known_.erase(ObjectKey(change.object));
    else
        known_[ObjectKey(change.object)] = {change.object, change.file, generation};
}

ChangeFinder::BytesOf History::LastBytes() {
    return [this](const std::string& object) { return book_->LastBytes(object); };
}

void History::NoteTrace() {
    std::string trace;
    try {
        trace = StartTrace(startupLog_);
    } catch (const Failure&) {
        return;  // until it can be looked at
    }
    if (trace == trace_) return;
    book_->Note(kTraceFact, trace);
    trace_ = std::move(trace);
}

History::Announcement::Announcement(History& history, Occasion occasion, const std::string& object)
    : history_(history), announced_{std::move(occasion), ObjectKey(object)} {
    const Lock lock(history_.mutex_);
    history_.announcements_.Add(&announced_);
}

History::Announcement::~Announcement() {
    const Lock lock(history_.mutex_);
    history_.announcements_.Remove(&announced_);
}

Generation History::Announcement::Record() {
    const Lock lock(history_.mutex_);
    history_.WithBook([&] { return history_.Look(kService); });
    return announced_.generation;
}

Generation History::Record(const std::string& user, const std::string& action,
                           const std::string& operation) {
    return Announcement(*this, {user, action, operation}).Record();
}

Generation History::RecordUnannounced(bool closely) {
    const Lock lock(mutex_);
    if (closely) watch_.LookCloser();
    return WithBook([&] { return Look(kService); });
}

HistoryBook::Range History::Generations() {
    const Lock lock(mutex_);
    return WithBook([&] { return book_->Generations(); });
}

std::vector<HistoryEntry> History::List(const HistoryQuery& query) {
    const Lock lock(mutex_);
    return WithBook([&] { return ReadHistory(connection_.Open(), query); });
}

std::vector<ObjectDifference> History::Compare(Generation from, Generation to,
                                               const std::string& object) {
    const Lock lock(mutex_);
    return WithBook([&] {
        Require(from);
        Require(to);
        return CompareStates(connection_.Open(), from, to == 0 ? *newest_ : to, object);
    });
}

std::vector<ObjectVersion> History::State(Generation generation) {
    const Lock lock(mutex_);
    return WithBook([&] {
        Require(generation);
        return ReadState(connection_.Open(), generation);
    });
}

KeywordRollback History::RollBack(const std::string& object, Generation generation) {
    const Lock lock(mutex_);
    return WithBook([&] {
        Require(generation);
        const auto then = ReadVersion(connection_.Open(), object, generation);
        const auto now = ReadVersion(connection_.Open(), object, *newest_);
        if (!then)
            throw Failure("generation " + std::to_string(generation) + " has no object " +
                          Quoted(object));
        if (!now) throw Failure("there is no object " + Quoted(object) + " now");
        return RollBackKeywords(KeywordsOf(now->bytes), KeywordsOf(then->bytes));
    });
}

void History::Forget(Generation kept) {
    const Lock lock(mutex_);
    WithBook([&] { book_->Forget(kept); });
}

std::vector<std::string> History::Unreadable() const {
    const Lock lock(mutex_);
    std::vector<std::string> reasons;
    for (const auto& [name, file] : finder_.Unreadable()) reasons.push_back(file.why);
    return reasons;
}

void History::Require(Generation generation) {
    const auto [oldest, newest] = book_->Generations();
    if (generation < oldest || generation > newest)
        throw Failure("the history has no generation " + std::to_string(generation) +
                      ": it goes from " + std::to_string(oldest) + " to " + std::to_string(newest));
}

}  // namespace oam::server
