// A running service with so many of everything: boards, entries of the object "Thing", registered
// clients and detected boards. Besides the boards there are four objects: the Supervisor, a
// plug-in, a component and "Thing".
#pragma once

#include <map>
#include <string>
#include <vector>

#include "plugins/recorder/host.h"
#include "support/alert_log.h"
#include "support/installation.h"

namespace oam::torture {

constexpr const char* kPlugin = "x.bpi";
constexpr const char* kComponent = "w.emc";
constexpr const char* kThing = "Thing";
constexpr const char* kProduct = "Prod";
constexpr const char* kBoard = "Prod 0";
constexpr unsigned long kFirstClient = 1000;
// Registers with nothing; its opens are refused at once.
constexpr unsigned long kOpener = 7;

class World {
  public:
    explicit World(int count);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    int Count() const { return count_; }
    // The last of the numbered ones.
    std::string LastEntry() const;
    unsigned long LastClient() const { return kFirstClient + static_cast<unsigned>(count_) - 1; }
    std::string Path(const std::string& relative) const { return home.Path(relative); }

    // What the next detection finds: so many boards.
    void ScriptDetected(int count);
    // From the files and registrations that it began with.
    void StartAnew();
    // The clients that alerts reach, as the service was left.
    std::string ReachedClients();
    // Whether the data files that it began with lie in this directory, as they were.
    bool HasDataFiles(const std::string& directory) const;

    test::Installation home;
    test::Recorder recorder;
    test::AlertLog alerts;

    // What a row keeps between its steps: an open handle with its object's name, further handles,
    // and what a call answered.
    unsigned long handle = 0;
    std::string openObject;
    std::vector<unsigned long> moreHandles;
    char text[512] = "";

  private:
    void WriteThing() const;
    void RegisterClients() const;
    void FillBoards();

    const int count_;
    std::map<std::string, std::string> dataFiles_;
};

}  // namespace oam::torture
