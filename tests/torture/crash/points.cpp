#include "points.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace oam::torture {

std::vector<std::size_t> ChosenPoints(std::size_t count, std::size_t most) {
    const char* mode = std::getenv("OAM_TORTURE");
    const bool isFull = mode != nullptr && std::string_view(mode) == "full";
    std::vector<std::size_t> points;
    if (isFull || count <= most || most < 2) {
        for (std::size_t i = 0; i < count; ++i) points.push_back(i);
    } else {
        for (std::size_t i = 0; i < most; ++i) points.push_back(i * (count - 1) / (most - 1));
    }
    return points;
}

void TellFigures(const std::string& rig, const std::string& figures) {
    std::printf("%s: %s\n", rig.c_str(), figures.c_str());
}

}  // namespace oam::torture
