// What the start-up log says went wrong.
#pragma once

#include <ctime>
#include <string>
#include <vector>

namespace oam {

// The last lines of severity E, at most ten, oldest first. A line that only says that something
// failed stands behind the one that names what was being loaded. Empty when there is no log, or
// only one that was last written before `since`: a start that could not open its log leaves an old
// one.
std::vector<std::string> StartupErrors(const std::string& path, time_t since);

// What can be done about a start that failed with this code.
std::string StartAdvice(unsigned code);

}  // namespace oam
