// A data file as it was found: the object that it holds, or why it holds none.
#pragma once

#include <optional>
#include <string>

#include "data_file.h"

namespace oam::server {

struct FoundFile {
    enum class Condition {
        kObject,
        kSpoiled,     // the service would drop it, or not start
        kOutOfReach,  // for now: no permission, no memory; nothing is known of what it holds
    };

    std::string name;  // without directory
    Condition condition = Condition::kOutOfReach;
    std::string bytes;
    std::optional<DataObject> object;
    std::string why;  // not an object: "Obj3.xmo:1:1: no keyword in the file has a value"
};

// Nothing when there is no such file.
std::optional<FoundFile> FindFile(const std::string& directory, const std::string& name);

}  // namespace oam::server
