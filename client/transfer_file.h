// A whole-configuration file judged before the service is let near it: an import deletes the old
// configuration before it reads the new one.
#pragma once

#include <string>
#include <vector>

#include "config_rules.h"

namespace oam {

struct TransferFile {
    std::vector<Finding> findings;  // empty: it can be imported
    size_t objects = 0;
};

// Reads and judges it. `served` as for CheckObjects. A file that cannot be read at all is a
// Failure.
TransferFile JudgeTransferFile(const std::string& path, const IsServed& served);

}  // namespace oam
