// A verb of one host, done on many: each has its own command, read from the same words, that runs
// with what it says collected.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "cli/fleet/fleet_command.h"
#include "command.h"

namespace oam::fleet {

// Whether the fleet offers it: what reaches a daemon and comes to an end.
bool IsHostVerb(const CommandRow& row);

// The command of one host, as the command line has it. "{host}" in the words is that host's name,
// so that a file that is written can be one for each.
using MakeVerb = std::function<std::unique_ptr<Command>(const std::string& host)>;

// On all hosts that the options mean, many at a time. `title` is the command line.
ExitStatus RunHostVerb(FleetContext& context, const CommandRow& row, const std::string& title,
                       const MakeVerb& make, bool namesEachHost);

}  // namespace oam::fleet
