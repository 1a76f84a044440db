// What must be there, from one life of the worker to the next.
//
// After each death it compares what that worker had found at its start with what the one before had
// left, and works out from its steps what it leaves itself.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "configuration.h"
#include "history.h"
#include "oracle.h"

namespace oam::torture {

struct SoakFigures {
    std::size_t kills = 0;
    std::size_t acknowledged = 0;
    std::size_t underWay = 0;  // begun in the service and not answered
    std::size_t imports = 0;
    long longestRestart = 0;  // in milliseconds

    void Add(const SoakFigures& other);
    std::string Text() const;
};

class Ledger {
  public:
    // Exports lie in the directory.
    Ledger(Oracle& oracle, std::string directory)
        : oracle_(oracle), directory_(std::move(directory)) {}

    // A worker that had reported has died. What was wrong, or nothing.
    std::string Settle();
    // The last steps of each client of the last worker.
    const std::string& Story() const { return story_; }

    SoakFigures figures;

  private:
    void CheckReport();
    void JudgeSteps(const Steps& steps);
    void ReadExports(const Steps& steps);
    void DropOldSaves();
    void TellStory();

    Oracle& oracle_;
    const std::string directory_;
    std::vector<Configuration> possible_;
    std::map<std::string, std::string> rest_;  // what no client changes, once it has been seen
    Saves saves_;
    std::string fault_;
    std::string story_;
};

}  // namespace oam::torture
