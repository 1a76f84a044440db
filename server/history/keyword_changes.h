// An object's keywords at two times, and what differs.
//
// Keywords are what stands in a data file, qualifiers ("Name?Type") among them; names are compared
// without regard to case, values byte by byte.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "object_kind.h"

namespace oam {
struct DataObject;
}

namespace oam::server {

using Keywords = std::map<std::string, std::string, NameLess>;

// Of several with one name the first one's spelling and the last one's value, as the service reads
// them.
Keywords KeywordsOf(const DataObject& object);
// Of a data file's bytes. Empty when they hold no object.
Keywords KeywordsOf(std::string_view dataFile);

struct KeywordChange {
    std::string keyword;
    // Nothing: there was none before, or is none after.
    std::optional<std::string> oldValue;
    std::optional<std::string> newValue;
};

// In keyword order.
std::vector<KeywordChange> CompareKeywords(const Keywords& before, const Keywords& after);

}  // namespace oam::server
