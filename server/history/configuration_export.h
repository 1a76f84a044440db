// A state of the configuration as an export file, as the service itself writes one.
#pragma once

#include <string>
#include <vector>

#include "history/configuration_state.h"

namespace oam::server {

// What no data file could keep (a hand may have written it) stands in it as it is: judge the file
// before it is imported.
std::string ExportText(const std::vector<ObjectVersion>& state);

}  // namespace oam::server
