// Wants something in the installation that a fresh one does not have.
#include "sound.h"

unsigned int Init(const char*) { return OAMERR_OPEN_DRIVER_FAIL; }
