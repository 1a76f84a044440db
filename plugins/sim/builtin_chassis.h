// The chassis that is there when no chassis file is: four boards of two products.
#pragma once

#include <string_view>

namespace oam::sim {

// In the format of chassis_file.h.
std::string_view builtInChassis();

}  // namespace oam::sim
