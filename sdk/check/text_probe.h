// Asks for one text in every way that a client can: with room, without, exactly enough, too little.
// What the entry writes is judged at every call; here its results are.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "module_kind.h"
#include "oam/codes.h"

namespace oam::check {

// Asks with a buffer, which may be null, and its size.
using Ask = std::function<oam_result(char* buffer, unsigned int size)>;

// The text; nothing when it cannot be had with much room either.
std::optional<std::string> ProbeText(Entry entry, const std::string& subject, const Ask& ask);

// For something that is not there.
void ProbeMissing(Entry entry, const std::string& subject, const Ask& ask);

}  // namespace oam::check
