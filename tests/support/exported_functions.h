// The functions that leave the library, as its export map has them: what a test of every one of
// them compares its own list with.
#pragma once

#include <set>
#include <string>

namespace oam::test {

std::set<std::string> ExportedFunctions();

}  // namespace oam::test
