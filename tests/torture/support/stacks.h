// The stack of every thread of the process, on standard error.
#pragma once

namespace oam::torture {

// Each thread is interrupted and prints its own; what it was in the system for is told as well. One
// that cannot be interrupted is told by the system's word alone.
void PrintAllStacks();

}  // namespace oam::torture
