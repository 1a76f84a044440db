// What a traced process does to the files below one directory, and what of it a disk may hold when
// the power fails.
//
// A disk has what was synced: a file's data by its own fsync, a name by the fsync of its directory,
// and everything by syncfs.
// Everything since may be there or not, each name change by itself and each file's data wholly, by
// half or not at all; no order is taken for granted.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "traced_child.h"

namespace oam::torture {

// A content that many disks have is there once: a child is made for each look at one of them, and
// takes the longer the more memory there is.
using Content = std::shared_ptr<const std::string>;
// Path below the directory ("cfg/Obj1.xmo") to content.
using Files = std::map<std::string, Content>;

class RecordedDisk {
  public:
    // Everything that lies below the directory now is on the disk. Call it before the run.
    explicit RecordedDisk(std::string directory);

    // To be given to RunTraced.
    void Observe(const SystemCall& call, long result);

    // One possible disk each: after each event, every subset of the unsynced names while they are
    // few, else all but one, the first ones, one alone and some at random; each with the unsynced
    // data whole, half and not there; and each file's data by itself.
    struct State {
        std::size_t event;  // how many events had happened
        std::string what;   // for messages
        std::shared_ptr<const Files> files;
    };
    // `atRandom`: so many random subsets after each event with many.
    std::vector<State> States(int atRandom) const;
    std::size_t Events() const { return events_.size(); }

  private:
    friend class PossibleDisks;

    struct Event {
        enum class Kind {
            kCreate,
            kRemove,
            kRename,
            kLink,
            kData,
            kSyncData,
            kSyncNames,
            kSyncAll
        };
        Kind kind;
        std::string path;
        std::string target;
        int inode = -1;
        std::string data;
    };
    using Names = std::map<std::string, int>;

    std::string Below(const std::string& path) const;
    void Opened(const std::string& path, int flags, int descriptor);
    void Written(const SystemCall& call, long result);
    void Synced(int descriptor);
    void Add(Event event);
    static void Apply(const Event& event, Names* names);
    static std::string PlaceOf(const Event& event);

    const std::string directory_;
    Names names_;
    Names firstNames_;                                        // what was there before
    std::map<int, std::string> first_;                        // by inode
    std::map<int, std::string> data_;                         // as the process sees it
    std::map<int, std::pair<std::string, int>> descriptors_;  // path, inode (-1: a directory)
    std::vector<Event> events_;
    int nextInode_ = 0;
};

}  // namespace oam::torture
