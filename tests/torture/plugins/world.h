// What every case begins with: a hostile and a sound module of each kind, and some boards.
//
// The plug-ins serve "Prod" and "Good". "Prod 0" is stopped at every stop of the service; "Prod 1"
// and "Good 0" are not. "Thing" is no board.
// (No two names begin alike: what is before the dot names the data file.)
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "plugins/recorder/host.h"
#include "support/alert_log.h"
#include "support/installation.h"

namespace oam::torture {

constexpr const char* kPlugin = "bad.bpi";
constexpr const char* kComponent = "hostile.emc";
constexpr const char* kGoodPlugin = "good.bpi";
constexpr const char* kGoodComponent = "sound.emc";
constexpr const char* kProduct = "Prod";
constexpr const char* kBoard = "Prod 0";
constexpr const char* kOtherBoard = "Prod 1";
constexpr const char* kGoodBoard = "Good 0";
constexpr const char* kThing = "Thing";
// An export of the very same configuration.
constexpr const char* kImport = "import.oam";

// Files for one installation; written by the test process, once for each case.
void FurnishWorld(const test::Installation& home);

// A child's. One at a time in a process.
class World {
  public:
    // What an entry does at each call: a code that stands in for its own, or nothing.
    using Act = std::function<std::optional<unsigned>(const test::RecordedCall&)>;

    explicit World(const test::Installation& home);
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    std::string Path(const std::string& relative) const { return home.Path(relative); }
    void Start();
    // Makes one entry of these modules hostile, until Disarm.
    void Arm(const std::vector<std::string>& files, const std::string& entry, const Act& act);
    void Disarm();
    // After whatever has happened, with nobody hostile any more: no lock is held, nothing was
    // thrown away, each module was started and ended in turn, and the next start is a whole one.
    void ExpectStanding();

    const test::Installation& home;
    test::Recorder recorder;
    test::AlertLog alerts;
    unsigned long handle = 0;  // what a situation has open

  private:
    void ExpectUnlocked() const;
    void ExpectOrderlyLives() const;
    void ExpectCleanDirectory() const;

    std::vector<std::string> armed_;
};

}  // namespace oam::torture
