// A data file as somebody's editor leaves it: the same objects and keywords, indented by tabs. The
// service reads it in steps, not at once.
#pragma once

#include <string>

namespace oam::test {

inline std::string AsByHand(std::string bytes) {
    const std::string blanks = "   ";
    for (size_t at = 0; (at = bytes.find(blanks, at)) != std::string::npos;)
        bytes.replace(at, blanks.size(), "\t");
    return bytes;
}

}  // namespace oam::test
