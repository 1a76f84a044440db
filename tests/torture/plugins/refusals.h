// What the service refuses to do for a thread that is inside an entry: the table, with the reasons.
// The public headers say the same.
#pragma once

#include "inside_call.h"
#include "situation.h"

namespace oam::torture {

struct Refusal {
    unsigned code;
    const char* reason;
};

// Null where nothing is refused for being called from there.
const Refusal* RefusalOf(const InsideCall& call, const Situation& situation);

}  // namespace oam::torture
