#include "board_keywords.h"

#include <array>
#include <limits>
#include <string_view>
#include <vector>

#include "chassis_file.h"
#include "keyword_rule.h"
#include "kit/db_access.h"
#include "kit/text_scan.h"

namespace oam::sim {
namespace {

constexpr const char* kMacCount = "NetworkInterface.Ethernet.Count";
constexpr const char* kSerial = "Eeprom.SerialNum";

// A board outside CompactPCI has shelf and slot 32.
constexpr int kNoShelfOrSlot = 32;

KeywordRule yesNoRule(const char* name, const char* description) {
    return {.name = name, .value = "No", .choices = {"Yes", "No"}, .description = description};
}

std::vector<KeywordRule> boardRules() {
    return {
        {.name = "Name", .type = "Object", .description = "name of managed object"},
        {.name = "Product", .isReadOnly = true, .description = "what kind of board it is"},
        numberRule("Number", {}, 0, 65535, "the board's number, unique in the host"),
        numberRule("Location.PCI.Bus", 0, 0, kHighestBus, "PCI bus"),
        numberRule("Location.PCI.Slot", 0, 0, kHighestSlot, "PCI slot"),
        numberRule("Location.PCI.IOAddress", 0, 0, 0xFFFFFFFF, "PCI I/O address"),
        numberRule("Location.CPCI.Shelf", kNoShelfOrSlot, 0, 255, "CompactPCI shelf"),
        numberRule("Location.CPCI.Slot", kNoShelfOrSlot, 0, 255, "CompactPCI slot"),
        {.name = kSerial,
         .value = "",
         .isReadOnly = true,
         .description = "serial number of the board in the slot"},
        {.name = kMacCount,
         .value = "0",
         .type = "Integer",
         .max = "4",
         .isReadOnly = true,
         .description = "number of Ethernet interfaces"},
        {.name = "Driver.Name", .value = "sim", .description = "name of the driver"},
        {.name = "Driver.BoardId",
         .value = "",
         .description = "the board's identifier within the driver"},
        {.name = "Clocking.HBus.ClockMode",
         .value = "STANDALONE",
         .choices = {"STANDALONE", "PRIMARY", "SECONDARY", "SLAVE"},
         .description = "the board's part in clocking the H-bus"},
        {.name = "XLaw",
         .value = "MU-LAW",
         .choices = {"A-LAW", "MU-LAW"},
         .description = "companding of the line"},
        yesNoRule("AutoStart", "start the board with the service"),
        yesNoRule("AutoStop", "stop the board with the service"),
    };
}

struct ThresholdRow {
    const char* keyword;
    int Thresholds::*value;
    int min;
    int max;
    const char* description;
};

constexpr std::array kThresholds = {
    ThresholdRow{"Temperature.Warning", &Thresholds::temperatureWarning, kCoolest, kHottest,
                 "warning temperature in tenths of a degree"},
    ThresholdRow{"Temperature.Alert", &Thresholds::temperatureAlert, kCoolest, kHottest,
                 "alert temperature in tenths of a degree"},
    ThresholdRow{"Fan.Warning", &Thresholds::fanWarning, 0, kFastestFan,
                 "lowest fan speed in revolutions per minute"},
};

KeywordRule macRule(std::size_t index) {
    return {.name = "NetworkInterface.Ethernet[" + std::to_string(index) + "].MAC_Address",
            .value = "",
            .isReadOnly = true,
            .description = "the interface's Ethernet address"};
}

oam_result setMacAddresses(unsigned long handle, const std::vector<std::string>& addresses) {
    for (std::size_t i = 0; i < kMostMacAddresses; ++i) {
        const auto rule = macRule(i);
        if (i >= addresses.size()) {
            if (auto failed = removeKeyword(handle, rule)) return failed;
            continue;
        }
        if (auto failed = installKeyword(handle, rule)) return failed;
        if (auto failed = _oamDbSetKeyword(handle, rule.name.c_str(), addresses[i].c_str())) {
            return failed;
        }
    }
    return _oamDbSetKeyword(handle, kMacCount, std::to_string(addresses.size()).c_str());
}

}  // namespace

oam_result installBoardKeywords(unsigned long handle, const Thresholds& thresholds) {
    if (auto failed = installKeywords(handle, boardRules())) return failed;
    for (const auto& row : kThresholds) {
        const auto rule =
            numberRule(row.keyword, thresholds.*row.value, row.min, row.max, row.description);
        if (auto failed = installKeyword(handle, rule)) return failed;
    }
    return OAM_SUCCESS;
}

Location readLocation(unsigned long handle) {
    const auto number = [&](const char* keyword, unsigned int max) {
        const auto text = kit::readKeyword(handle, keyword).value_or("");
        return static_cast<unsigned int>(kit::boundedNumber(text, 0, max).value_or(0));
    };
    return {.bus = number("Location.PCI.Bus", kHighestBus),
            .slot = number("Location.PCI.Slot", kHighestSlot)};
}

Thresholds readThresholds(unsigned long handle, const Thresholds& usual) {
    constexpr std::numeric_limits<int> kInt;
    auto thresholds = usual;
    for (const auto& row : kThresholds) {
        const auto text = kit::readKeyword(handle, row.keyword).value_or("");
        const auto number = kit::boundedNumber(text, kInt.min(), kInt.max());
        if (number) thresholds.*row.value = static_cast<int>(*number);
    }
    return thresholds;
}

oam_result followSlot(unsigned long handle, const BoardPlan* plan) {
    const auto read = plan != nullptr ? *plan : BoardPlan();
    if (auto failed = _oamDbSetKeyword(handle, kSerial, read.serial.c_str())) return failed;
    return setMacAddresses(handle, read.macAddresses);
}

}  // namespace oam::sim
