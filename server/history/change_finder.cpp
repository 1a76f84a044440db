#include "history/change_finder.h"

#include <algorithm>
#include <utility>

#include "history/object_key.h"

namespace oam::server {
namespace {

using Kind = ObjectDifference::Kind;

const std::string* productOf(const Keywords& keywords) {
    const auto found = keywords.find("Product");
    return found == keywords.end() ? nullptr : &found->second;
}

bool isSameProduct(const Keywords& left, const Keywords& right) {
    const std::string* const one = productOf(left);
    const std::string* const other = productOf(right);
    return one == other || (one != nullptr && other != nullptr && *one == *other);
}

// Makes one change of each pair of a deletion and a creation that is a renaming.
void joinRenamed(std::vector<ObjectChange>* changes, const ChangeFinder::BytesOf& bytesOf) {
    std::map<std::string, ObjectChange*> deleted;  // by file
    for (ObjectChange& change : *changes)
        if (change.kind == Kind::kDeleted) deleted[change.file] = &change;
    for (ObjectChange& created : *changes) {
        const auto former = deleted.find(created.file);
        if (created.kind != Kind::kCreated || former == deleted.end()) continue;
        const Keywords before = KeywordsOf(bytesOf(former->second->object));
        const Keywords after = KeywordsOf(created.bytes);
        if (!isSameProduct(before, after)) continue;
        created.kind = Kind::kChanged;
        created.previous = std::exchange(former->second->object, {});
        created.changes = CompareKeywords(before, after);
    }
    std::erase_if(*changes, [](const ObjectChange& change) { return change.object.empty(); });
}

}  // namespace

void ChangeFinder::Take(ConfigurationWatch::News news) {
    hasNews_ = hasNews_ || !news.found.empty() || !news.gone.empty();
    for (const std::string& file : news.gone) Forget(file);
    for (FoundFile& found : news.found) {
        const std::string file = found.name;
        Forget(file);
        if (!found.object) {
            unreadable_[file] = std::move(found);
            continue;
        }
        const std::string key = ObjectKey(found.object->name);
        lost_.erase(key);
        keys_[file] = key;
        holders_[key].insert(file);
        news_[file] = std::move(found);
    }
}

void ChangeFinder::StartOver() {
    auto lost = std::move(lost_);
    *this = {};
    lost_ = std::move(lost);
}

ChangeFinder::Finds ChangeFinder::Compare(const KnownObjects& known, const BytesOf& bytesOf,
                                          bool mayRename) const {
    Finds finds;
    for (const auto& [file, found] : news_) {
        const std::string& key = keys_.at(file);
        if (HolderOf(key, known) != file) continue;
        const std::string& name = found.object->name;
        const auto old = known.find(key);
        const std::string before = old == known.end() ? std::string() : bytesOf(name);
        auto changes = before == found.bytes && old != known.end()
                           ? std::vector<KeywordChange>()
                           : CompareKeywords(KeywordsOf(before), KeywordsOf(*found.object));
        if (old == known.end())
            finds.changes.push_back(
                {name, {}, file, Kind::kCreated, found.bytes, std::move(changes)});
        else if (!changes.empty())
            finds.changes.push_back(
                {name, {}, file, Kind::kChanged, found.bytes, std::move(changes)});
        else if (old->second.file != file)
            finds.moved.push_back({name, file});
    }
    for (const auto& [key, object] : known) {
        if (holders_.contains(key) || unreadable_.contains(object.file) || lost_.contains(key))
            continue;
        finds.changes.push_back({object.name,
                                 {},
                                 object.file,
                                 Kind::kDeleted,
                                 {},
                                 CompareKeywords(KeywordsOf(bytesOf(object.name)), {})});
    }
    if (mayRename) joinRenamed(&finds.changes, bytesOf);
    std::sort(finds.changes.begin(), finds.changes.end(),
              [](const ObjectChange& left, const ObjectChange& right) {
                  return NameLess()(left.object, right.object);
              });
    return finds;
}

void ChangeFinder::Settle(const KnownObjects& known) {
    std::erase_if(news_, [&](const auto& news) {
        return HolderOf(keys_.at(news.first), known) == news.first;
    });
    hasNews_ = false;
}

// Of several files the one that the book knows, else the first.
const std::string& ChangeFinder::HolderOf(const std::string& key, const KnownObjects& known) const {
    const auto& files = holders_.at(key);
    const auto old = known.find(key);
    return old != known.end() && files.contains(old->second.file) ? old->second.file
                                                                  : *files.begin();
}

void ChangeFinder::Forget(const std::string& file) {
    unreadable_.erase(file);
    news_.erase(file);
    const auto key = keys_.find(file);
    if (key == keys_.end()) return;
    const auto holders = holders_.find(key->second);
    holders->second.erase(file);
    if (holders->second.empty()) holders_.erase(holders);
    keys_.erase(key);
}

}  // namespace oam::server
