// The stored keywords of the component's own object.
#pragma once

#include <string>
#include <vector>

#include "failure_window.h"
#include "kit/keyword_rule.h"
#include "oam/codes.h"

namespace oam::watch {

const std::vector<kit::KeywordRule>& settingRules();

// Adds what is missing and repairs what is no good; each repair is told in *repairs. Needs a handle
// in read-write and provider mode.
oam_result completeSettings(unsigned long handle, std::vector<std::string>* repairs);

FailureLimit readLimit(unsigned long handle);

// What the counting period is called; whoever calls it something else begins a new one.
std::string readPeriod(unsigned long handle);

}  // namespace oam::watch
