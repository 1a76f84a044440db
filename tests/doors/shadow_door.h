// Stand-in for the board shadow: what the writer publishes is kept as records.
//
// There is a view between oamShadowInit and oamShadowExit. A publication through it is noted as
// "Publish(name, name)".
#pragma once

#include <vector>

#include "objects/shadow.h"

namespace oam::test {

struct ShadowDoor {
    static ShadowDoor& The();
    void Reset();

    std::vector<CBoardIDShadow> published;
    bool publishedUsingVxPlugin = false;
};

}  // namespace oam::test
