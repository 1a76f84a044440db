// The history's entries, page by page.
#pragma once

#include <vector>

#include "history/history_entry.h"
#include "store/database.h"

namespace oam::server {

// Newest first.
std::vector<HistoryEntry> ReadHistory(Database& database, const HistoryQuery& query);

}  // namespace oam::server
