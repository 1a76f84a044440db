// A table that fits a terminal: its widest columns give way, their texts end with an ellipsis.
#pragma once

#include "table.h"

namespace oam {

// With a width of 0, and when it fits anyway, the table as it is. Columns of numbers stay whole,
// and no column gets narrower than eight, or than its heading.
Table Fitted(const Table& table, size_t width);

}  // namespace oam
