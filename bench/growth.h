// The growth table: what the operations cost with 10, 100, 1,000 and 10,000 boards.
#pragma once

#include <iosfwd>

namespace oam::bench {

// False when an operation failed.
bool printGrowth(std::ostream& out, bool json);

}  // namespace oam::bench
