#include "board_values.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// One keyword's value, at most 127 characters; null when it is missing or longer.
class StoredValue {
  public:
    StoredValue(unsigned long handle, const char* keyword) noexcept
        : isThere_(_oamDbGetKeyword(handle, keyword, text_, sizeof text_) == OAM_SUCCESS) {}

    const char* Get() const noexcept { return isThere_ ? text_ : nullptr; }
    unsigned Number(unsigned missing) const noexcept {
        return isThere_ ? boardNumberFromText(text_) : missing;
    }
    bool IsYes() const noexcept { return isThere_ && oam::EqualNoCase(text_, "Yes"); }
    // Kept: exact, unlike the comparison of IsYes.
    bool IsALaw() const noexcept {
        return isThere_ && (strcmp(text_, "A-LAW") == 0 || strcmp(text_, "ALAW") == 0);
    }

  private:
    char text_[oam::kNameSize];
    bool isThere_;
};

void readMacAddresses(unsigned long handle, BoardValues* values) noexcept {
    const unsigned count = StoredValue(handle, "NetworkInterface.Ethernet.Count").Number(0);
    char texts[kMacSlots][OAM_MAC_TEXT_SIZE] = {};
    for (unsigned i = 0; i < std::min(count, kMacSlots); ++i) {
        char keyword[64];
        snprintf(keyword, sizeof keyword, "%s%d%s", "NetworkInterface.Ethernet[",
                 static_cast<int>(i), "].MAC_Address");
        if (_oamDbGetKeyword(handle, keyword, texts[i], sizeof texts[i]) != OAM_SUCCESS) {
            texts[i][0] = '\0';
        }
    }
    values->SetMACAddress(texts, count);
}

}  // namespace

void BoardValues::SetMACAddress(const char (*texts)[OAM_MAC_TEXT_SIZE], unsigned count) noexcept {
    macAddressCount = std::min<unsigned>(count, OAM_MAC_KEPT);
    if (macAddressCount == 0) macAddresses[0][0] = '\0';
    for (unsigned i = 0; i < macAddressCount; ++i) {
        oam::CopyCut(texts[i], macAddresses[i], sizeof macAddresses[i]);
    }
    macAddresses[kMacSlots - 1][0] = '\0';
}

const char* BoardValues::MacAddressAt(unsigned index) const noexcept {
    if (macAddressCount == 0) return macAddresses[0];
    return macAddresses[index < macAddressCount ? index : kMacSlots - 1];
}

oam_result readBoardValues(unsigned long handle, BoardValues* values) noexcept {
    const struct {
        const char* keyword;
        oam::OwnedText* text;
    } texts[] = {{"Driver.Name", &values->driverName},
                 {"Driver.BoardId", &values->driverBoardId},
                 {"Eeprom.SerialNum", &values->serialNumber},
                 {"Product", &values->product},
                 {"Clocking.HBus.ClockMode", &values->clockMode}};
    for (const auto& row : texts) {
        const StoredValue stored(handle, row.keyword);
        if (!row.text->Assign(stored.Get() != nullptr ? stored.Get() : "")) {
            return OAMERR_NOT_ENOUGH_MEMORY;
        }
    }
    const struct {
        const char* keyword;
        unsigned* number;
    } numbers[] = {{"Location.PCI.Bus", &values->pciBus},
                   {"Location.PCI.Slot", &values->pciSlot},
                   {"Location.PCI.IOAddress", &values->pciIOAddress},
                   {"Location.CPCI.Shelf", &values->cpciShelf},
                   {"Location.CPCI.Slot", &values->cpciSlot}};
    for (const auto& row : numbers)
        *row.number = StoredValue(handle, row.keyword).Number(*row.number);
    values->autoStart = StoredValue(handle, "AutoStart").IsYes();
    values->autoStop = StoredValue(handle, "AutoStop").IsYes();
    values->xLaw = StoredValue(handle, "XLaw").IsALaw();
    readMacAddresses(handle, values);
    return OAM_SUCCESS;
}

oam_result readBoardNumber(unsigned long handle, unsigned* number) noexcept {
    char text[oam::kNameSize];
    if (auto failed = _oamDbGetKeyword(handle, "Number", text, sizeof text)) return failed;
    *number = boardNumberFromText(text);
    return OAM_SUCCESS;
}

unsigned boardNumberFromText(const char* text) noexcept {
    return static_cast<unsigned>(strtoul(text, nullptr, 10));
}
