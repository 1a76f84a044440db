// What the board table keeps of a board object's keywords, and reading it from the database.
#pragma once

#include "base/text.h"
#include "oam/entry.h"

constexpr unsigned kMacSlots = OAM_MAC_KEPT + 1;  // the last one is always empty
constexpr unsigned kNoCpci = 32;                  // shelf and slot of a board without CompactPCI

// A type of its own, so that it is copied at once instead of letter by letter.
struct MacAddresses {
    using Text = char[OAM_MAC_TEXT_SIZE];

    Text& operator[](unsigned index) noexcept { return texts[index]; }
    const Text& operator[](unsigned index) const noexcept { return texts[index]; }

    Text texts[kMacSlots] = {};
};

struct BoardValues {
    unsigned number = 0;           // "Number"
    oam::OwnedText driverName;     // "Driver.Name"
    oam::OwnedText driverBoardId;  // "Driver.BoardId"
    unsigned pciBus = 0;           // "Location.PCI.Bus"
    unsigned pciSlot = 0;          // "Location.PCI.Slot"
    unsigned pciIOAddress = 0;     // "Location.PCI.IOAddress"
    oam::OwnedText serialNumber;   // "Eeprom.SerialNum"
    oam::OwnedText product;        // "Product"
    oam::OwnedText clockMode;      // "Clocking.HBus.ClockMode"
    bool autoStart = false;        // "AutoStart"
    bool autoStop = false;         // "AutoStop"
    bool xLaw = false;             // "XLaw": A-law companding
    unsigned cpciSlot = kNoCpci;   // "Location.CPCI.Slot"
    unsigned cpciShelf = kNoCpci;  // "Location.CPCI.Shelf"
    MacAddresses macAddresses;     // "NetworkInterface.Ethernet[i].MAC_Address"
    unsigned macAddressCount = 0;  // "NetworkInterface.Ethernet.Count", at most 4

    // Keeps the first OAM_MAC_KEPT texts.
    void SetMACAddress(const char (*texts)[OAM_MAC_TEXT_SIZE], unsigned count) noexcept;
    // Entry 0 for a board without addresses; the empty entry for an index at or above the count.
    const char* MacAddressAt(unsigned index) const noexcept;
};

// Reads everything but the number from an open board object. A missing keyword leaves its default;
// OAMERR_NOT_ENOUGH_MEMORY is the only failure.
oam_result readBoardValues(unsigned long handle, BoardValues* values) noexcept;

// Reads "Number": the code of the read.
oam_result readBoardNumber(unsigned long handle, unsigned* number) noexcept;

// A decimal number as the database holds it.
unsigned boardNumberFromText(const char* text) noexcept;
