// Which device is which product: the table of the plug-in's "Match[i]" keywords.
//
// A pattern is compared with the number's hexadecimal digits, vendor and device with four, the
// class with six (class, subclass, programming interface). '?' stands for one digit; a '*' at the
// end for all that follow. So "02*" is every network controller. The first row that fits counts.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "pci_library.h"

namespace oam::pci {

inline constexpr std::size_t kIdDigits = 4;
inline constexpr std::size_t kClassDigits = 6;

struct MatchRow {
    std::string vendor;
    std::string device;
    std::string deviceClass;
    std::string product;
};

// Whether the pattern can fit a number of so many digits.
bool isPattern(std::string_view pattern, std::size_t digits);
bool fitsPattern(std::string_view pattern, std::uint32_t number, std::size_t digits);

// Empty when no row fits.
std::string productOf(const std::vector<MatchRow>& table, const DeviceIdentity& identity);

// Each product once, as first spelled, in the table's order.
std::vector<std::string> productsOf(const std::vector<MatchRow>& table);

}  // namespace oam::pci
