// Publishing the board table for other processes.
#pragma once

#include "oam/codes.h"

// Writes the first boards of the table, in table order, as many as the segment holds. Takes the
// table lock, then the shadow's. OAMERR_NOT_ENOUGH_MEMORY without a shadow in this process, or when
// the segment cannot be written.
oam_result boardIDsShadowUpdate() noexcept;
