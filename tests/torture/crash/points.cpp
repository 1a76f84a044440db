#include "points.h"

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string_view>

namespace oam::torture {

bool IsFull() {
    const char* mode = std::getenv("OAM_TORTURE");
    return mode != nullptr && std::string_view(mode) == "full";
}

unsigned long Seed() {
    static const unsigned long kSeed = [] {
        const char* given = std::getenv("OAM_TORTURE_SEED");
        const unsigned long seed =
            given != nullptr ? std::strtoul(given, nullptr, 10) : std::random_device{}();
        std::printf("OAM_TORTURE_SEED=%lu\n", seed);
        return seed;
    }();
    return kSeed;
}

std::vector<std::size_t> ChosenPoints(std::size_t count, std::size_t most) {
    std::vector<std::size_t> points;
    if (IsFull() || count <= most || most < 2) {
        for (std::size_t i = 0; i < count; ++i) points.push_back(i);
    } else {
        for (std::size_t i = 0; i < most; ++i) points.push_back(i * (count - 1) / (most - 1));
    }
    return points;
}

void TellFigures(const std::string& rig, const std::string& figures) {
    TellFigures(rig + ": " + figures);
}

void TellFigures(const std::string& line) { std::printf("%s\n", line.c_str()); }

std::string Grouped(unsigned long number) {
    std::string digits = std::to_string(number);
    for (size_t place = digits.size(); place > 3;) {
        place -= 3;
        digits.insert(place, ",");
    }
    return digits;
}

}  // namespace oam::torture
