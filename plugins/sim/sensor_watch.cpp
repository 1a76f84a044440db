#include "sensor_watch.h"

#include <cstdlib>
#include <string>
#include <utility>

namespace oam::sim {
namespace {

std::string degrees(int tenths) {
    const std::string sign = tenths < 0 ? "-" : "";
    return sign + std::to_string(std::abs(tenths / 10)) + "." +
           std::to_string(std::abs(tenths % 10)) + " degrees";
}

}  // namespace

std::vector<BoardEvent> SensorWatch::Look(Location location, const Readings& readings,
                                          const Thresholds& thresholds) {
    std::vector<BoardEvent> events;
    const Heat heat = readings.temperature >= thresholds.temperatureAlert     ? Heat::Hot
                      : readings.temperature >= thresholds.temperatureWarning ? Heat::Warm
                                                                              : Heat::Usual;
    if (std::exchange(heat_, heat) < heat) {
        const bool isHot = heat == Heat::Hot;
        events.push_back(
            {.location = location,
             .code = isHot ? OAMEVN_TEMPERATURE_ALERT : OAMEVN_TEMPERATURE_WARNING,
             .severity = isHot ? OAM_ERROR : OAM_WARNING,
             .text = "The board's temperature is " + degrees(readings.temperature) + "."});
    }
    const bool isSlow = readings.fan < thresholds.fanWarning;
    if (!std::exchange(isSlow_, isSlow) && isSlow) {
        events.push_back({.location = location,
                          .code = OAMEVN_FAN_RPM_WARNING,
                          .severity = OAM_WARNING,
                          .text = "The board's fan turns at " + std::to_string(readings.fan) +
                                  " revolutions per minute."});
    }
    return events;
}

}  // namespace oam::sim
