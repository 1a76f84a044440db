// The configuration as it was: its state at a generation, and what differs between two.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "history/history_entry.h"
#include "store/database.h"

namespace oam::server {

struct ObjectVersion {
    std::string object;
    std::string bytes;  // of its data file
};

// In name order.
std::vector<ObjectVersion> ReadState(Database& database, Generation generation);
// Nothing: there was no such object then.
std::optional<ObjectVersion> ReadVersion(Database& database, const std::string& object,
                                         Generation generation);
// In name order; empty `object`: of all. `from` may be the newer one.
std::vector<ObjectDifference> CompareStates(Database& database, Generation from, Generation to,
                                            const std::string& object);

}  // namespace oam::server
