// What an import would change, before it does.
#pragma once

#include <string>
#include <vector>

#include "history/history_entry.h"

namespace oam::server {

// Between the service's configuration and an export file that was judged; in name order.
// `directory`: the installation's. What cannot be read or exported is a Failure.
std::vector<ObjectDifference> WhatImportChanges(const std::string& directory,
                                                const std::string& file);

}  // namespace oam::server
