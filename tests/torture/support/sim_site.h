// A small installation with what ships: the plug-in sim.bpi with a chassis of quick boards, and the
// component watch.emc.
//
// It lies in memory (/dev/shm) where there is such a thing: a commit's way to the disk is tried by
// other rigs, and would only slow these down.
#pragma once

#include <string>

#include "support/installation.h"

namespace oam::torture {

class SimSite {
  public:
    // So many boards in the chassis, "Sim 0", "Sim 1", ..., in turn of each of the two products.
    // The first of them are unreliable: they fail, hang and get hot. An event of theirs whose
    // receiver waits for an import keeps the import waiting too, for two seconds.
    explicit SimSite(int boards, int unreliable = 0);

    // Starts the service and configures every board of the chassis. False when that fails.
    bool StartWithBoards() const;

    // The thread with which the plug-in follows its sensors while the service runs.
    static constexpr int kOwnThreads = 1;

    int Boards() const { return boards_; }
    static std::string BoardName(int index) { return "Sim " + std::to_string(index); }
    static bool IsInMemory();

    test::Installation home;

  private:
    const int boards_;
};

// Sets keywords of an object, as a client. False when the object could not be changed.
bool ChangeSettings(const char* object, std::initializer_list<std::pair<const char*, const char*>>);

}  // namespace oam::torture
