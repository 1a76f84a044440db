// Reading a resource over the platform interface of the field, from its daemon with its simulator.
#pragma once

#include "rows.h"

namespace oam::bench {

// Null where it is not installed.
Run hpiPeer();

}  // namespace oam::bench
