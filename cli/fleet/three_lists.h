// What came of a verb on many hosts: done, refused with the reason, and those that did not answer.
#pragma once

#include <string>
#include <vector>

#include "console.h"
#include "failure.h"

namespace oam::fleet {

struct HostResult {
    std::string host;
    ExitStatus status = kNoDaemon;  // as the verb has it on one host
    CollectedOutput output;
};

enum class HostEnd { kDone, kRefused, kNoAnswer };
HostEnd EndOf(const HostResult& result);

// 0 when all have done it, 8 when some have; else what they agree on: 3 when none answered, their
// common status when all refused alike, 1 when not.
ExitStatus StatusOf(const std::vector<HostResult>& results);

// {"done": [{"host", "answer"}], "refused": [{"host", "status", "reason", "answer"}],
// "noAnswer": [{"host", "reason"}]}; `answer` is the verb's own JSON.
void Show(Console& console, const std::vector<HostResult>& results);

}  // namespace oam::fleet
