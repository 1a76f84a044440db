// Taking an object's keywords back to what they were.
#pragma once

#include <vector>

#include "history/keyword_changes.h"
#include "object_change.h"

namespace oam::server {

struct KeywordRollback {
    // Setting these brings the values back.
    std::vector<Assignment> assignments;
    // From now to then, what no assignment can do: qualifiers, keywords that were removed since,
    // and those that were added.
    std::vector<KeywordChange> others;
};

KeywordRollback RollBackKeywords(const Keywords& now, const Keywords& then);

}  // namespace oam::server
