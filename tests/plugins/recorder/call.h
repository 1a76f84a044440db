// One call of one entry of this module: found its script, told the test process.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "plugins/recorder/control.h"

namespace oam::test {

struct CallDetails {
    unsigned long handle = 0;
    bool nullBuffer = false;
};

// The module's script, and what its `first` has answered to this call.
struct CalledScript : ModuleScript {
    std::optional<Code> answer;
};

// Records the call, asks `first`, and answers the module's script; without a recorder in the
// process an empty one.
CalledScript Called(const char* entry, std::vector<std::string> arguments = {},
                    CallDetails details = {});

// Writes an answer by the rule for texts of oam/entry.h.
unsigned AnswerText(const std::string& text, char* buffer, unsigned size);

// The answers from the script's lists; nothing for every other keyword.
std::optional<std::string> ListedKeyword(const ModuleScript& script, const std::string& keyword);

// A text argument as it is recorded: a null pointer is told apart from an empty text.
inline std::string Shown(const char* text) { return text == nullptr ? "(null)" : text; }

}  // namespace oam::test
