// oam bundle: a command whose parts are other commands' answers.
#pragma once

#include "command.h"

namespace oam {

std::span<const CommandRow> BundleCommands();

}  // namespace oam
