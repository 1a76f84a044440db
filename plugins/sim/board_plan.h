// What the chassis file says about one simulated board.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "curve.h"
#include "location.h"
#include "operation.h"
#include "outcome_script.h"

namespace oam::sim {

struct BoardPlan {
    std::string name;
    std::string product;
    Location location;
    std::string serial;
    std::vector<std::string> macAddresses;
    Curve temperature{350};  // tenths of a degree
    Curve fan{3000};         // revolutions per minute
    PerOperation<std::optional<std::chrono::milliseconds>> times;
    PerOperation<OutcomeScript> scripts;
};

}  // namespace oam::sim
