#include "match_table.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "kit/text_scan.h"

namespace oam::pci {
namespace {

bool takesAnyRest(std::string_view pattern) { return pattern.ends_with('*'); }

std::string_view fixedPart(std::string_view pattern) {
    return pattern.substr(0, pattern.size() - (takesAnyRest(pattern) ? 1 : 0));
}

}  // namespace

bool isPattern(std::string_view pattern, std::size_t digits) {
    const auto fixed = fixedPart(pattern);
    const bool isLong = takesAnyRest(pattern) ? fixed.size() <= digits : fixed.size() == digits;
    return isLong && std::ranges::all_of(fixed, [](char letter) {
               return letter == '?' || kit::isHexDigit(letter);
           });
}

bool fitsPattern(std::string_view pattern, std::uint32_t number, std::size_t digits) {
    if (!isPattern(pattern, digits)) return false;
    std::array<char, 16> text{};
    (void)std::snprintf(text.data(), text.size(), "%0*x", static_cast<int>(digits), number);
    const auto fixed = fixedPart(pattern);
    return std::equal(fixed.begin(), fixed.end(), text.begin(), [](char one, char digit) {
        return one == '?' || kit::lowerLetter(one) == digit;
    });
}

std::string productOf(const std::vector<MatchRow>& table, const DeviceIdentity& identity) {
    const auto row = std::ranges::find_if(table, [&](const MatchRow& match) {
        return fitsPattern(match.vendor, identity.vendor, kIdDigits) &&
               fitsPattern(match.device, identity.device, kIdDigits) &&
               fitsPattern(match.deviceClass, identity.classCode, kClassDigits);
    });
    return row == table.end() ? std::string() : row->product;
}

std::vector<std::string> productsOf(const std::vector<MatchRow>& table) {
    std::vector<std::string> products;
    for (const auto& row : table) {
        const bool isKnown = std::ranges::any_of(
            products, [&](const std::string& known) { return kit::sameText(known, row.product); });
        if (!isKnown) products.push_back(row.product);
    }
    return products;
}

}  // namespace oam::pci
