#include "cli/fleet/host_pattern.h"

#include <fnmatch.h>

#include <algorithm>

namespace oam::fleet {
namespace {

bool isName(const std::string& pattern) {
    return pattern.find_first_of("*?[\\") == std::string::npos;
}

}  // namespace

HostPattern::HostPattern(const std::vector<std::string>& texts) {
    for (const std::string& text : texts)
        for (std::size_t at = 0; at <= text.size();) {
            const std::size_t comma = std::min(text.find(',', at), text.size());
            if (comma > at) patterns_.push_back(text.substr(at, comma - at));
            at = comma + 1;
        }
}

bool HostPattern::Matches(const std::string& host) const {
    return patterns_.empty() ||
           std::any_of(patterns_.begin(), patterns_.end(), [&](const std::string& pattern) {
               return pattern == host || fnmatch(pattern.c_str(), host.c_str(), 0) == 0;
           });
}

std::string HostPattern::One() const {
    return patterns_.size() == 1 && isName(patterns_.front()) ? patterns_.front() : std::string();
}

std::vector<std::string> HostPattern::Names() const {
    std::vector<std::string> names;
    std::copy_if(patterns_.begin(), patterns_.end(), std::back_inserter(names), isName);
    return names;
}

}  // namespace oam::fleet
