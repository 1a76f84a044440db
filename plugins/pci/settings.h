// The keywords of the plug-in's own object.
//
// They live in the database; a Settings is a copy of them that needs no lock and no handle.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/keyword_rule.h"
#include "match_table.h"
#include "oam/codes.h"
#include "sysfs_tree.h"

namespace oam::pci {

struct Settings {
    SysfsTree tree;
    bool mayControl = false;  // bind and unbind drivers
    std::chrono::milliseconds bindLimit{0};
    std::vector<MatchRow> matches;
};

// The rule of one of the plug-in's stored keywords.
std::optional<kit::KeywordRule> settingRule(std::string_view keyword);

// Adds what is missing and repairs what is no good; each repair is told in *repairs. Needs a handle
// in read-write and provider mode; it can be repeated.
oam_result completeSettings(unsigned long handle, std::vector<std::string>* repairs);

// After completeSettings, so every value is good.
Settings readSettings(unsigned long handle);

}  // namespace oam::pci
