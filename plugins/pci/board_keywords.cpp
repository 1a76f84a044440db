#include "board_keywords.h"

#include <array>

#include "driver_binding.h"
#include "kit/forever.h"
#include "kit/keyword_store.h"
#include "network_interfaces.h"

namespace oam::pci {
namespace {

constexpr const char* kBus = "Location.PCI.Bus";
constexpr const char* kSlot = "Location.PCI.Slot";
constexpr const char* kSerial = "Eeprom.SerialNum";
constexpr const char* kDriver = "Driver.Name";
constexpr const char* kBoardId = "Driver.BoardId";
constexpr const char* kEthernet = "NetworkInterface.Ethernet";

// A board outside CompactPCI has shelf and slot 32.
constexpr int kNoShelfOrSlot = 32;
constexpr int kHighestShelfOrSlot = 255;
constexpr int kHighestNumber = 65535;

kit::KeywordRule yesNoRule(const char* name, const char* description) {
    return {.name = name, .value = "No", .choices = {"Yes", "No"}, .description = description};
}

kit::KeywordRule macRule(std::size_t index) {
    return {.name = kit::elementName(kEthernet, index, ".MAC_Address"),
            .value = "",
            .isReadOnly = true,
            .description = "the interface's Ethernet address"};
}

bool isDriverOrNone(std::string_view value) { return value.empty() || canNameDriver(value); }

const std::vector<kit::KeywordRule>& boardRules() {
    static const auto& kRules = kit::forever(std::vector<kit::KeywordRule>{
        {.name = "Name", .type = "Object", .description = "name of managed object"},
        {.name = "Product", .isReadOnly = true, .description = "what kind of board it is"},
        kit::numberRule("Number", {}, 0, kHighestNumber, "the board's number, unique in the host"),
        kit::numberRule(kBus, 0, 0, kHighestBus, "PCI bus, with the domain above its 8 bits"),
        kit::numberRule(kSlot, 0, 0, kHighestSlot, "PCI slot"),
        kit::numberRule("Location.CPCI.Shelf", kNoShelfOrSlot, 0, kHighestShelfOrSlot,
                        "CompactPCI shelf"),
        kit::numberRule("Location.CPCI.Slot", kNoShelfOrSlot, 0, kHighestShelfOrSlot,
                        "CompactPCI slot"),
        {.name = kSerial,
         .value = "",
         .isReadOnly = true,
         .description = "serial number of the board in the slot"},
        {.name = kDriver,
         .value = "",
         .description = "kernel driver that starts the board; empty: the kernel's choice",
         .fits = isDriverOrNone},
        {.name = kBoardId,
         .value = "",
         .isReadOnly = true,
         .description = "the board's address on the bus"},
        {.name = kit::countName(kEthernet),
         .value = "0",
         .type = "Integer",
         .max = OAM_MAC_KEPT,
         .isReadOnly = true,
         .description = "number of Ethernet interfaces"},
        yesNoRule("AutoStart", "start the board with the service"),
        yesNoRule("AutoStop", "stop the board with the service"),
    });
    return kRules;
}

struct HardwareFacts {
    std::string serialNumber;
    std::string address;
    std::string driver;
    std::vector<std::string> macAddresses;
};

HardwareFacts readHardware(const SysfsTree& tree, const PciBoard& board) {
    HardwareFacts facts;
    PciLibrary library(tree.root);
    Patience none;
    const DriverBinding binding(tree, {}, &none);
    facts.address = board.functions.front().Text();
    for (const auto& function : board.functions) {
        if (facts.serialNumber.empty()) {
            facts.serialNumber = library.SerialNumber(function).value_or("");
        }
        if (facts.driver.empty()) facts.driver = binding.HeldBy(function);
        for (const auto& interface : networkInterfaces(tree, function)) {
            if (interface.macAddress.empty() || facts.macAddresses.size() == OAM_MAC_KEPT) continue;
            facts.macAddresses.push_back(interface.macAddress);
        }
    }
    return facts;
}

oam_result store(unsigned long handle, const std::string& keyword, const std::string& value) {
    return _oamDbSetKeyword(handle, keyword.c_str(), value.c_str());
}

oam_result storeMacAddresses(unsigned long handle, const std::vector<std::string>& addresses) {
    for (std::size_t i = 0; i < OAM_MAC_KEPT; ++i) {
        const auto rule = macRule(i);
        if (i >= addresses.size()) {
            if (auto failed = kit::removeKeyword(handle, rule)) return failed;
            continue;
        }
        if (auto failed = kit::installKeyword(handle, rule)) return failed;
        if (auto failed = store(handle, rule.name, addresses[i])) return failed;
    }
    return store(handle, kit::countName(kEthernet), std::to_string(addresses.size()));
}

oam_result adoptDriver(unsigned long handle, const std::string& driver) {
    const auto* const rule = boardRule(kDriver);
    if (!kit::readKeyword(handle, kDriver).value_or("").empty()) return OAM_SUCCESS;
    const auto accepted = kit::acceptedValue(*rule, driver);
    return accepted ? store(handle, kDriver, *accepted) : OAM_SUCCESS;
}

}  // namespace

const kit::KeywordRule* boardRule(std::string_view keyword) {
    static const auto& kMacRules =
        kit::forever(std::vector<kit::KeywordRule>{macRule(0), macRule(1), macRule(2), macRule(3)});
    static_assert(OAM_MAC_KEPT == 4);
    if (const auto* const rule = kit::findRule(boardRules(), keyword)) return rule;
    return kit::findRule(kMacRules, keyword);
}

oam_result installBoardKeywords(unsigned long handle) {
    return kit::installKeywords(handle, boardRules());
}

PciLocation readLocation(unsigned long handle) {
    return {.bus = static_cast<unsigned int>(kit::readNumber(handle, kBus, 0, kHighestBus, 0)),
            .slot = static_cast<unsigned int>(kit::readNumber(handle, kSlot, 0, kHighestSlot, 0))};
}

oam_result followSlot(unsigned long handle, const SysfsTree& tree,
                      const std::optional<PciBoard>& board) {
    const auto facts = board ? readHardware(tree, *board) : HardwareFacts{};
    const bool isNewPlace = kit::readKeyword(handle, kBoardId) != facts.address;
    if (auto failed = store(handle, kSerial, facts.serialNumber)) return failed;
    if (auto failed = store(handle, kBoardId, facts.address)) return failed;
    if (isNewPlace) {
        if (auto failed = adoptDriver(handle, facts.driver)) return failed;
    }
    return storeMacAddresses(handle, facts.macAddresses);
}

}  // namespace oam::pci
