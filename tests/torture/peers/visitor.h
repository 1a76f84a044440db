// A process that comes to files of the shadow that nobody of ours has made.
#pragma once

#include <optional>
#include <string>

#include "generation.h"

namespace oam::torture {

// What it must come to.
enum class Outcome {
    kIsRefused,      // it cannot attach
    kCannotPublish,  // it can read, but not change
    kGoesOn,         // what it publishes is there
};

// Attaches in a process of its own, reads by every function, publishes. Each answer is a documented
// code, and each name is what the segment's bytes say; the table is the first one, when that is
// given. What went wrong, or nothing.
std::string Visit(Outcome expected, std::optional<Generation> first = std::nullopt);

// The same reading, in this process, while somebody changes the bytes: the codes only.
std::string ReadAnything();

}  // namespace oam::torture
