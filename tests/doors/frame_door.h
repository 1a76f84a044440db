// Stand-in for the frame: the running flag, the debug sink (here it keeps what it is given) and the
// names of the codes.
#pragma once

#include <map>

namespace oam::test {

struct FrameDoor {
    static FrameDoor& The();
    void Reset();

    // What _oamGetText knows.
    std::map<unsigned, const char*> texts;
};

}  // namespace oam::test
