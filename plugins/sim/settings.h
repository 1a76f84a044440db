// The keywords of the plug-in's own object: the products it serves and how its boards behave when
// the chassis file says nothing.
//
// They live in the database; a Settings is a copy of them that needs no lock and no handle.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "operation.h"
#include "sensor_watch.h"
#include "simulated_board.h"

namespace oam::sim {

struct Settings {
    std::string chassisFile;
    std::vector<std::string> products;
    PerOperation<OperationDefault> operations;
    Thresholds thresholds;

    bool Serves(std::string_view product) const;
};

// Adds what is missing and puts the first value in place of one that is no good; each such repair
// is told in *repairs. The service would not start with an object that has lost its name, or with a
// product that is missing or comes twice: it reads them right after Init. Needs a handle in
// read-write and provider mode; it can be repeated.
oam_result completeSettings(unsigned long handle, const std::string& objectName,
                            std::vector<std::string>* repairs);

// After completeSettings, so every value is good.
Settings readSettings(unsigned long handle);

}  // namespace oam::sim
