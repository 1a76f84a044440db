#include "board_lookup.h"

#include <algorithm>

#include "arguments.h"
#include "failure.h"
#include "number.h"

namespace oam {
namespace {

using Values = std::vector<std::string>;

struct Identity {
    const char* option;
    const char* placeholder;
    int count;
    bool isNumber;
    const char* description;
    oam_result (*ask)(const Values& values, char* buffer, unsigned size);
};

// The values are checked before they are asked with.
unsigned number(const std::string& text) { return ParseNumber(text).value_or(0); }

template <oam_result (*kAsk)(unsigned, char*, unsigned)>
oam_result byNumber(const Values& values, char* buffer, unsigned size) {
    return kAsk(number(values[0]), buffer, size);
}

template <oam_result (*kAsk)(unsigned, unsigned, char*, unsigned)>
oam_result byPlace(const Values& values, char* buffer, unsigned size) {
    return kAsk(number(values[0]), number(values[1]), buffer, size);
}

template <oam_result (*kAsk)(const char*, char*, unsigned)>
oam_result byText(const Values& values, char* buffer, unsigned size) {
    return kAsk(values[0].c_str(), buffer, size);
}

oam_result byDriver(const Values& values, char* buffer, unsigned size) {
    return _oamBoardLookupByDriverIDs(values[0].c_str(), values[1].c_str(), buffer, size);
}

constexpr Identity kIdentities[] = {
    {"--number", "N", 1, true, "Board number", byNumber<_oamBoardLookupByNumber>},
    {"--driver", "NAME ID", 2, false, "Driver name, and board id within the driver", byDriver},
    {"--bus-slot", "BUS SLOT", 2, true, "PCI bus and slot", byPlace<_oamBoardLookupByBusSlot>},
    {"--shelf-slot", "SHELF SLOT", 2, true, "CompactPCI shelf and slot",
     byPlace<_oamBoardLookupByShelfSlot>},
    {"--io", "ADDRESS", 1, true, "PCI I/O address", byNumber<_oamBoardLookupByIOAddress>},
    {"--serial", "TEXT", 1, false, "Serial number", byText<_oamBoardLookupBySerialNumber>},
    {"--product", "NAME", 1, false, "The first board of a product",
     byText<_oamBoardLookupByProduct>},
    {"--mac", "ADDRESS", 1, false, "One of the MAC addresses", byText<_oamBoardLookupByMACAddress>},
};

}  // namespace

void BoardLookup::Declare(Arguments& arguments) {
    values_.resize(std::size(kIdentities));
    for (size_t row = 0; row < values_.size(); ++row) {
        const Identity& identity = kIdentities[row];
        arguments.Several(identity.option, identity.count, &values_[row], identity.placeholder,
                          identity.description);
    }
}

void BoardLookup::Check() const {
    const auto isGiven = [](const Values& values) { return !values.empty(); };
    if (std::count_if(values_.begin(), values_.end(), isGiven) != 1)
        throw UsageError("give one of the identities; see `oam board lookup --help`");
    const size_t row = Row();
    if (!kIdentities[row].isNumber) return;
    for (const std::string& value : values_[row])
        if (!ParseNumber(value)) throw UsageError("not a number of 32 bits: " + Quoted(value));
}

Answer BoardLookup::Ask() const {
    const size_t row = Row();
    return AskText([&](char* buffer, unsigned size) {
        return kIdentities[row].ask(values_[row], buffer, size);
    });
}

size_t BoardLookup::Row() const {
    size_t row = 0;
    while (values_[row].empty()) ++row;
    return row;
}

}  // namespace oam
