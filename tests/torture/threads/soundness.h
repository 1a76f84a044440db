// Whether a service is sound after a storm: nothing open, nothing under way, and what is in memory
// is what a restart finds.
#pragma once

#include "support/sim_site.h"

namespace oam::torture {

// Fails the test for what is not. The service has been restarted when it returns. `threads`: how
// many threads the process has while nothing is under way.
void ExpectSoundService(const SimSite& site, int threads);

}  // namespace oam::torture
