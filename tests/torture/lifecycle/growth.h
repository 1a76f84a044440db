// Whether a process stays as it is while the same is done again and again.
#pragma once

#include <functional>
#include <string>

#include "support/resources.h"

namespace oam::torture {

// What may be gained from the tenth part to the end. Memory that a single round loses comes to more
// than that in any run; what the C library keeps for itself does not.
struct Allowed {
    long heapBytes = 8 * 1024;
    long residentKb = 2 * 1024;
};

// Does it so often, round(index). The first tenth fills what is filled once for the whole process.
// Before each look nothing is under way: the process has so many threads. Memory that has grown is
// looked at over three more stretches of as many rounds, and has grown when it does in each. Fails
// the test when memory, descriptors or threads have grown; what has come of the last stretch in
// words.
std::string Repeat(unsigned long rounds, const std::function<void(unsigned long)>& round,
                   int threads, const Allowed& allowed = {});

}  // namespace oam::torture
