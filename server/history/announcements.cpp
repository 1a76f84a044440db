#include "history/announcements.h"

#include <algorithm>

#include "history/object_key.h"

namespace oam::server {
namespace {

// Whether what was announced without a name can have done this.
bool covers(const Occasion& occasion, const ObjectChange& change) {
    using Kind = ObjectDifference::Kind;
    if (occasion.action == "create") return change.kind == Kind::kCreated;
    if (occasion.action == "add") return change.kind != Kind::kDeleted;
    if (occasion.action == "delete") return change.kind == Kind::kDeleted;
    return true;
}

}  // namespace

bool Announcements::MayRename() const {
    return std::none_of(all_.begin(), all_.end(), [](const Announced* one) {
        return one->key.empty() &&
               (one->occasion.action == "import" || one->occasion.action == "rollback");
    });
}

// 0: nobody; else the announcement's place, counted from 1.
std::size_t Announcements::PlaceOf(const ObjectChange& change) const {
    const std::string key = ObjectKey(change.object);
    const std::string previous = ObjectKey(change.previous);
    std::size_t any = 0;
    std::size_t place = 0;
    for (const Announced* one : all_) {
        ++place;
        if (one->key.empty()) {
            if (any == 0 && covers(one->occasion, change)) any = place;
        } else if (one->key == key || one->key == previous) {
            return place;
        }
    }
    return any;
}

std::vector<Commit> Announcements::Share(std::vector<ObjectChange> changes,
                                         const Occasion& unannounced) const {
    std::vector<Commit> commits(1 + all_.size());
    commits[0].occasion = unannounced;
    std::size_t place = 0;
    for (const Announced* one : all_) commits[++place].occasion = one->occasion;
    for (ObjectChange& change : changes)
        commits[PlaceOf(change)].changes.push_back(std::move(change));
    return commits;
}

void Announcements::Settle(const std::vector<Commit>& commits) {
    std::size_t place = 0;
    for (Announced* one : all_)
        one->generation = std::max(one->generation, commits[++place].generation);
}

void Announcements::Settle(Generation generation) {
    for (Announced* one : all_) one->generation = generation;
}

}  // namespace oam::server
