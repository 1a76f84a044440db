// When a reading becomes an event.
//
// An event is raised once, when a reading gets worse past a threshold; the reading has to come back
// before the same event is raised again.
#pragma once

#include <vector>

#include "board_event.h"

namespace oam::sim {

// What a sensor can read and a threshold can be.
inline constexpr int kCoolest = -1000;
inline constexpr int kHottest = 2000;
inline constexpr int kFastestFan = 100000;

struct Readings {
    int temperature = 0;  // tenths of a degree
    int fan = 0;          // revolutions per minute
};

struct Thresholds {
    int temperatureWarning = 0;
    int temperatureAlert = 0;
    int fanWarning = 0;
};

class SensorWatch {
  public:
    std::vector<BoardEvent> Look(Location location, const Readings& readings,
                                 const Thresholds& thresholds);

  private:
    enum class Heat { Usual, Warm, Hot };

    Heat heat_ = Heat::Usual;
    bool isSlow_ = false;
};

}  // namespace oam::sim
