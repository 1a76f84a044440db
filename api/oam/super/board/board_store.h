// Between the database and the board table: building the table from the objects, and the record and
// keywords of a new board.
#pragma once

#include "oam/codes.h"
#include "plugin.h"

// Fills the table with every object that names a known product and publishes it. A failure empties
// the table; OAMERR_ALREADY_EXISTS when two objects have the same number.
oam_result boardIDsInit() noexcept;
// Empties the table and gives up the shadow. Always 0.
oam_result boardIDsExit() noexcept;

// Makes the record of a board whose object exists, with a free number, and stores its keywords.
// Kept: a failure up to the closing of the object leaves the table lock taken; see
// base/database_lock.h for how it is given back.
oam_result boardIDsCreate(const char* name, const CPlugin* plugin) noexcept;
