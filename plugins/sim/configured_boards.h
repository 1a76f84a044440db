// What the plug-in knows of the configured boards: which name is where, and its thresholds.
//
// The service's board table is asked where a board is, because a change of location can still be
// refused after the plug-in has seen it. While boards are stopped at shut-down the table does not
// answer any more; then the last that was heard counts. The thresholds are in no table; they are
// taken when a change is closed.
//
// The lock guards the memory alone and is held for no call of the service.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "location.h"
#include "oam/codes.h"
#include "sensor_watch.h"

namespace oam::sim {

struct ConfiguredBoard {
    std::string product;
    Location location;
    std::optional<Thresholds> thresholds;
};

class ConfiguredBoards {
  public:
    // May be called with the service's locks held or without any.
    oam_result Find(const std::string& name, ConfiguredBoard* board);

    void Remember(const std::string& name, const ConfiguredBoard& board);
    void Rename(std::string_view from, std::string_view to);
    void Forget(std::string_view name);

  private:
    std::mutex lock_;
    std::map<std::string, ConfiguredBoard> boards_;  // by name in lower case
};

}  // namespace oam::sim
