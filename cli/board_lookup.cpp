#include "board_lookup.h"

#include <algorithm>

#include "arguments.h"
#include "failure.h"
#include "number.h"

namespace oam {
namespace {

using Values = std::vector<std::string>;

struct Option {
    const char* option;
    const char* placeholder;
    int count;
    bool isNumber;
    const char* description;
    BoardIdentity (*make)(const Values& values);
};

// The values are checked before an identity is made of them.
unsigned number(const std::string& text) { return ParseNumber(text).value_or(0); }

template <class By>
BoardIdentity byNumber(const Values& values) {
    return By{number(values[0])};
}

template <class By>
BoardIdentity byPlace(const Values& values) {
    return By{number(values[0]), number(values[1])};
}

template <class By>
BoardIdentity byText(const Values& values) {
    return By{values[0]};
}

BoardIdentity byDriver(const Values& values) { return ByDriver{values[0], values[1]}; }

constexpr Option kOptions[] = {
    {"--number", "N", 1, true, "Board number", byNumber<ByNumber>},
    {"--driver", "NAME ID", 2, false, "Driver name, and board id within the driver", byDriver},
    {"--bus-slot", "BUS SLOT", 2, true, "PCI bus and slot", byPlace<ByBusSlot>},
    {"--shelf-slot", "SHELF SLOT", 2, true, "CompactPCI shelf and slot", byPlace<ByShelfSlot>},
    {"--io", "ADDRESS", 1, true, "PCI I/O address", byNumber<ByIoAddress>},
    {"--serial", "TEXT", 1, false, "Serial number", byText<BySerialNumber>},
    {"--product", "NAME", 1, false, "The first board of a product", byText<ByProduct>},
    {"--mac", "ADDRESS", 1, false, "One of the MAC addresses", byText<ByMacAddress>},
};

}  // namespace

void BoardLookup::Declare(Arguments& arguments) {
    values_.resize(std::size(kOptions));
    for (size_t row = 0; row < values_.size(); ++row) {
        const Option& option = kOptions[row];
        arguments.Several(option.option, option.count, &values_[row], option.placeholder,
                          option.description);
    }
}

void BoardLookup::Check() const {
    const auto isGiven = [](const Values& values) { return !values.empty(); };
    if (std::count_if(values_.begin(), values_.end(), isGiven) != 1)
        throw UsageError("give one of the identities; see `oam board lookup --help`");
    const size_t row = Row();
    if (!kOptions[row].isNumber) return;
    for (const std::string& value : values_[row])
        if (!ParseNumber(value)) throw UsageError("not a number of 32 bits: " + Quoted(value));
}

BoardIdentity BoardLookup::Given() const {
    const size_t row = Row();
    return kOptions[row].make(values_[row]);
}

size_t BoardLookup::Row() const {
    size_t row = 0;
    while (values_[row].empty()) ++row;
    return row;
}

}  // namespace oam
