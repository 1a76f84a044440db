// What the data files hold, against the last version of each object that the book has.
//
// What was found is kept until it is in the book: a book that fails for a while loses nothing. An
// object is known by its name; one that vanished while another one came up in its file was renamed.
// A file that holds no object now says nothing about its object.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "history/configuration_watch.h"
#include "history/history_book.h"

namespace oam::server {

class ChangeFinder {
  public:
    void Take(ConfigurationWatch::News news);
    // The next news is a first look's.
    void StartOver();

    // Whether anything was taken since all was settled.
    bool HasNews() const { return hasNews_; }

    struct Finds {
        std::vector<ObjectChange> changes;
        std::vector<MovedObject> moved;
    };
    // `known` as the book has it; `bytesOf` reads an object's last version. After an import files
    // say nothing about names: it gives the files out anew.
    using BytesOf = std::function<std::string(const std::string& object)>;
    Finds Compare(const KnownObjects& known, const BytesOf& bytesOf, bool mayRename) const;
    // All of it is in the book.
    void Settle(const KnownObjects& known);

    // Data files that hold no object now.
    const std::map<std::string, FoundFile>& Unreadable() const { return unreadable_; }
    bool IsHeld(const std::string& key) const { return holders_.contains(key); }

    // Lost, not deleted: its absence is no change.
    void ExpectBack(const std::string& key) { lost_.insert(key); }

  private:
    const std::string& HolderOf(const std::string& key, const KnownObjects& known) const;
    void Forget(const std::string& file);

    // The object in each file, and the files of each; more than one is a mistake that the service
    // mends at a start.
    std::map<std::string, std::string> keys_;
    std::map<std::string, std::set<std::string>> holders_;
    std::map<std::string, FoundFile> unreadable_;
    // Not compared yet, or holders beside the one that counts.
    std::map<std::string, FoundFile> news_;
    std::set<std::string> lost_;
    bool hasNews_ = false;
};

}  // namespace oam::server
