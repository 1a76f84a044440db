// What is wrong with this host, as far as the daemon can see, and what can be done.
#pragma once

#include <string>
#include <vector>

#include "services/core.h"

namespace oam::server {

struct Complaint {
    enum class Severity { kNote, kWarning, kError };
    Severity severity;
    std::string subject;
    std::string text;
    std::string remedy;
};

std::vector<Complaint> Examine(const Core& core);

}  // namespace oam::server
