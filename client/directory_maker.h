// Making an installation's directories with modes that its owner, and with a group its group, can
// work with.
//
// A directory that is there is left as it is, unless it keeps out who must get in: then it gets the
// mode of a new one. So a second run changes nothing.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace oam {

struct DirectoryPlan {
    bool forGroup = false;
    std::string group;  // empty: the directories stay in the group they have
};

struct MadeDirectory {
    std::string path;
    std::string action;  // "created", "repaired" or "kept"
    unsigned mode;
};

// In the order given; parents that are missing on the way to one are created with it.
std::vector<MadeDirectory> MakeDirectories(const std::vector<std::string>& paths,
                                           const DirectoryPlan& plan);

}  // namespace oam
