// An option whose value is a number within a range, checked while the command line is read.
#pragma once

#include <functional>
#include <string>

#include "number.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace oam {

CLI::Option* AddNumber(CLI::App& app, const std::string& name,
                       const std::function<void(unsigned)>& store, NumberRange range,
                       const std::string& description);

}  // namespace oam
