// Who is about to change what: found changes are shared out among those who announced them.
//
// A change belongs to the oldest announcement of its object, by the name before or after it, else
// to the oldest one of any object that can have made such a change, else to nobody.
#pragma once

#include <list>
#include <string>
#include <vector>

#include "history/history_book.h"

namespace oam::server {

struct Announced {
    Occasion occasion;
    std::string key;            // of the object; empty: any
    Generation generation = 0;  // the newest one with a change of it
};

class Announcements {
  public:
    void Add(Announced* one) { all_.push_back(one); }
    void Remove(Announced* one) { all_.remove(one); }

    // False: files may have got new names, or new objects, all at once.
    bool MayRename() const;

    // What nobody announced, then a commit for each announcement.
    std::vector<Commit> Share(std::vector<ObjectChange> changes, const Occasion& unannounced) const;
    // The commits of Share are in the book.
    void Settle(const std::vector<Commit>& commits);
    // All of it is in this generation.
    void Settle(Generation generation);

  private:
    std::size_t PlaceOf(const ObjectChange& change) const;

    std::list<Announced*> all_;  // oldest first
};

}  // namespace oam::server
