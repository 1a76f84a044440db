// Where a device answers, and where a board sits.
//
// The kernel's address is domain, bus, slot and function. A board is all of a slot, and its object
// has "Location.PCI.Bus" and "Location.PCI.Slot" only; so the bus number there carries the domain
// above its own eight bits, and is the plain bus in the first domain, which most hosts have alone.
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace oam::pci {

struct PciLocation {
    unsigned int bus = 0;  // domain * 256 + bus
    unsigned int slot = 0;

    // Bus 0, slot 0 is the host's own bridge, and what an object without a location reads.
    bool IsPlaced() const { return bus != 0 || slot != 0; }

    // "PCI 03:00", or "PCI 0001:03:00" outside the first domain: hexadecimal, as the kernel has it.
    std::string BoardName() const;

    friend auto operator<=>(const PciLocation&, const PciLocation&) = default;
};

inline constexpr unsigned int kHighestDomain = 0xFFFFF;
inline constexpr unsigned int kHighestBus = kHighestDomain << 8 | 0xFF;
inline constexpr unsigned int kHighestSlot = 31;
inline constexpr unsigned int kFunctions = 8;

struct PciAddress {
    PciLocation location{};
    unsigned int function = 0;

    unsigned int Domain() const { return location.bus >> 8; }
    unsigned int Bus() const { return location.bus & 0xFF; }

    // "0000:03:00.0"
    std::string Text() const;
    // Nothing for a text that is no address, or not as Text spells it.
    static std::optional<PciAddress> Parse(std::string_view text);

    friend auto operator<=>(const PciAddress&, const PciAddress&) = default;
};

}  // namespace oam::pci
