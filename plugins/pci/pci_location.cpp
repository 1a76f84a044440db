#include "pci_location.h"

#include <array>
#include <cstdio>

#include "kit/text_scan.h"

namespace oam::pci {
namespace {

template <class... Numbers>
std::string formatted(const char* format, Numbers... numbers) {
    std::array<char, 32> text{};
    (void)std::snprintf(text.data(), text.size(), format, numbers...);
    return text.data();
}

// Takes the number before the separator off the front.
std::optional<unsigned int> takeNumber(std::string_view* text, char separator, unsigned int most) {
    const auto end = text->find(separator);
    if (end == std::string_view::npos) return {};
    const auto number = kit::boundedNumber(text->substr(0, end), 0, most, 16);
    text->remove_prefix(end + 1);
    if (!number) return {};
    return static_cast<unsigned int>(*number);
}

}  // namespace

std::string PciLocation::BoardName() const {
    const unsigned int domain = bus >> 8;
    if (domain == 0) return formatted("PCI %02x:%02x", bus, slot);
    return formatted("PCI %04x:%02x:%02x", domain, bus & 0xFF, slot);
}

std::string PciAddress::Text() const {
    return formatted("%04x:%02x:%02x.%x", Domain(), Bus(), location.slot, function);
}

std::optional<PciAddress> PciAddress::Parse(std::string_view text) {
    auto rest = text;
    const auto domain = takeNumber(&rest, ':', kHighestDomain);
    const auto bus = takeNumber(&rest, ':', 0xFF);
    const auto slot = takeNumber(&rest, '.', kHighestSlot);
    const auto function = kit::boundedNumber(rest, 0, kFunctions - 1, 16);
    if (!domain || !bus || !slot || !function) return {};
    const PciAddress address = {.location = {.bus = *domain << 8 | *bus, .slot = *slot},
                                .function = static_cast<unsigned int>(*function)};
    if (address.Text() != text) return {};
    return address;
}

}  // namespace oam::pci
