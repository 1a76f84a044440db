// Boards and differences as text for people and as JSON for programs.
#pragma once

#include <string>

#include "shadow_table.h"
#include "table.h"
#include "table_difference.h"

namespace oam::shadow {

oam::Table boardRows(const std::vector<Board>& boards);
Record boardRecord(const Board& board);

// One line of what has changed: "renamed 3: a -> b".
std::string lineOf(const Difference& difference);
Json jsonOf(const Difference& difference);

}  // namespace oam::shadow
