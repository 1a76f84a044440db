// Where the chassis comes from: a file of the configuration directory, or the built-in one.
#pragma once

#include <optional>
#include <string>

namespace oam::sim {

// The text of a bare file name's file in "<installation directory>/oam/cfg/"; the built-in chassis
// when there is no such file; nothing when it is there but cannot be read.
std::optional<std::string> chassisText(const std::string& fileName);

}  // namespace oam::sim
