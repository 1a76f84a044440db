// Numbers given on the command line: decimal, or hexadecimal with "0x", and always within bounds.
// A leading zero means nothing: "010" is ten.
#pragma once

#include <optional>
#include <string_view>

namespace oam {

struct NumberRange {
    unsigned least = 0;
    unsigned most = 0xffffffff;
};

// Nothing for anything but one whole number of 32 bits.
std::optional<unsigned> ParseNumber(std::string_view text);

}  // namespace oam
