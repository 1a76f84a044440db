// The plug-in's own result codes.
//
// A plug-in may answer codes outside the service's table; it then names them in GetText. They lie
// in a range of their own, so that no other plug-in's code is taken for one of these.
#pragma once

#include "oam/codes.h"

namespace oam::sim {

#define SIM_CODE(name, value) inline constexpr oam_result name{value};
#include "sim_codes.def"
#undef SIM_CODE

// The name of one of the codes above, a static text; null for every other code.
const char* codeName(unsigned int code);

}  // namespace oam::sim
