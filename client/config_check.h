// Looking an installation over without touching it: what would go wrong at the service's next
// start.
#pragma once

#include <optional>
#include <vector>

#include "config_rules.h"
#include "lock_file.h"

namespace oam {

struct CheckResult {
    std::vector<Finding> findings;
    std::optional<LockHolder> holder;  // somebody is at work there; what lies there may change
    size_t dataFiles = 0;
    size_t objects = 0;
    size_t libraries = 0;
};

CheckResult CheckInstallation(const Installation& place);

}  // namespace oam
