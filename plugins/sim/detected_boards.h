// The answer to "what is in the chassis": keywords of the plug-in's own object that are computed,
// not stored.
//
//   DetectedBoards.Count                  number of boards found by the last DetectBoards
//   DetectedBoards[i].Name                for each of them, i from 0
//   DetectedBoards[i].Product
//   DetectedBoards[i].Location.PCI.Bus
//   DetectedBoards[i].Location.PCI.Slot
//
// DetectBoards runs on any thread, so one list replaces the other under a lock.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "location.h"

namespace oam::sim {

struct DetectedBoard {
    std::string name;
    std::string product;
    Location location;
};

class DetectedBoards {
  public:
    // Whether the keyword is of this family, also when it has no value now.
    static bool Holds(std::string_view keyword);

    void Replace(std::vector<DetectedBoard> boards);

    // Nothing when there is no such board or keyword.
    std::optional<std::string> Get(std::string_view keyword) const;

    // The qualifiers of a keyword that has a value: "Type" and "ReadOnly".
    std::optional<std::string> GetQualifier(std::string_view keyword,
                                            std::string_view qualifier) const;

  private:
    mutable std::mutex lock_;
    std::vector<DetectedBoard> boards_;
};

}  // namespace oam::sim
