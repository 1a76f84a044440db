// What goes straight to a board's plug-in.
#pragma once

#include <string>

namespace oam {

// A number of the plug-in for a selector of the plug-in. A refusal is a Failure.
int BoardStatus(const std::string& board, unsigned selector);

void SendBuffer(const std::string& board, const std::string& bytes);

}  // namespace oam
