// `oam fleet` is a program of its own, oam-fleet, that lies beside this one: it alone needs the
// engine's library, and a host that is in no fleet needs neither.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "failure.h"

namespace oam {

constexpr const char* kFleetWord = "fleet";

// The other words of a line whose command is `fleet`; nothing when it is another.
std::optional<std::vector<std::string>> FleetWords(int argc, char** argv);

// Becomes the other program. It returns when there is none, which it then has said.
ExitStatus RunFleetProgram(const std::vector<std::string>& words);

// Becomes the other program when the line is one of its own; else it returns.
void CompleteFleetLine(const std::string& line);

}  // namespace oam
