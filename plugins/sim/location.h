// Where a board sits. Bus 0, slot 0 is what a board without a location has, so no slot is there.
#pragma once

#include <compare>
#include <string>

namespace oam::sim {

struct Location {
    unsigned int bus = 0;
    unsigned int slot = 0;

    bool IsPlaced() const { return bus != 0 || slot != 0; }
    std::string Text() const {
        return "bus " + std::to_string(bus) + " slot " + std::to_string(slot);
    }
    friend auto operator<=>(const Location&, const Location&) = default;
};

inline constexpr unsigned int kHighestBus = 255;
inline constexpr unsigned int kHighestSlot = 31;

}  // namespace oam::sim
