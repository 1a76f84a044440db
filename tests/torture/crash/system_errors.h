// The errors that each system call on files can have.
#pragma once

#include <vector>

#include "traced_child.h"

namespace oam::torture {

// What may happen to this call instead of its success; empty for calls that have nothing to do with
// files or memory.
std::vector<Decision> FailuresOf(long number);

// "openat", for messages; the number for others.
const char* CallName(long number);

}  // namespace oam::torture
