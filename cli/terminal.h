// What the terminal at a descriptor takes; nothing at all when it is a file or a pipe.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace oam {

// The columns of the terminal; 0: none, or it does not say.
size_t TerminalWidth(int descriptor);

// Colour only for people who look, unless they ask for none (NO_COLOR, TERM=dumb).
bool TakesColour(int descriptor);

enum class Look { kHeading, kTrouble };
// The text as it looks on that descriptor.
std::string Painted(std::string_view text, Look look, int descriptor);

}  // namespace oam
