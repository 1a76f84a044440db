// The board queries. None of them takes memory.
#include <cstdio>

#include "row.h"

namespace oam::torture {

namespace {

constexpr const char* kMacAddress = "00:11:22:33:44:55";

// A row for a call that answers numbers about the board.
template <oam_result (*Ask)(const char*, unsigned*) noexcept>
unsigned askNumber(World& world) {
    unsigned number = 0;
    const unsigned code = Ask(kBoard, &number);
    std::snprintf(world.text, sizeof world.text, "%u", number);
    return code;
}

template <oam_result (*Ask)(const char*, unsigned*, unsigned*) noexcept>
unsigned askNumbers(World& world) {
    unsigned first = 0;
    unsigned second = 0;
    const unsigned code = Ask(kBoard, &first, &second);
    std::snprintf(world.text, sizeof world.text, "%u %u", first, second);
    return code;
}

void setMacAddress(World&) {
    char texts[1][OAM_MAC_TEXT_SIZE];
    std::snprintf(texts[0], sizeof texts[0], "%s", kMacAddress);
    (void)_oamBoardSetMACAddress(kBoard, texts, 1);
}

void resetMacAddress(World&) { (void)_oamBoardResetMACAddressCount(kBoard); }

unsigned setMacAddressNow(World&) {
    char texts[1][OAM_MAC_TEXT_SIZE];
    std::snprintf(texts[0], sizeof texts[0], "%s", kMacAddress);
    return _oamBoardSetMACAddress(kBoard, texts, 1);
}

unsigned lookUpMacAddress(World& world) {
    return _oamBoardLookupByMACAddress(kMacAddress, world.text, sizeof world.text);
}

unsigned driverIDs(World& world) {
    char id[128];
    return _oamBoardGetDriverIDs(kBoard, world.text, sizeof world.text, id, sizeof id);
}

}  // namespace

std::vector<Row> QueryRows() {
    return {
        {"_oamBoardEnum", "",
         [](World& world) {
             return unsigned{_oamBoardEnum(world.Count() - 1, world.text, sizeof world.text)};
         }},
        {"_oamBoardLookupByNumber", "",
         [](World& world) {
             return unsigned{_oamBoardLookupByNumber(0u, world.text, sizeof world.text)};
         }},
        {"_oamBoardLookupByDriverIDs", "",
         [](World& world) {
             return unsigned{_oamBoardLookupByDriverIDs("", "", world.text, sizeof world.text)};
         }},
        {"_oamBoardLookupByBusSlot", "",
         [](World& world) {
             return unsigned{_oamBoardLookupByBusSlot(0u, 0u, world.text, sizeof world.text)};
         }},
        {"_oamBoardLookupByShelfSlot", "",
         [](World& world) {
             return unsigned{_oamBoardLookupByShelfSlot(32u, 32u, world.text, sizeof world.text)};
         }},
        {"_oamBoardLookupByIOAddress", "",
         [](World& world) {
             return unsigned{_oamBoardLookupByIOAddress(0u, world.text, sizeof world.text)};
         }},
        {"_oamBoardLookupBySerialNumber", "",
         [](World& world) {
             return unsigned{_oamBoardLookupBySerialNumber("S-1", world.text, sizeof world.text)};
         }},
        {"_oamBoardLookupByProduct", "",
         [](World& world) {
             return unsigned{_oamBoardLookupByProduct(kProduct, world.text, sizeof world.text)};
         }},
        {.name = "_oamBoardLookupByMACAddress",
         .what = "",
         .call = &lookUpMacAddress,
         .prepare = &setMacAddress,
         .undo = &resetMacAddress},
        {"_oamBoardGetNumber", "", &askNumber<_oamBoardGetNumber>},
        {"_oamBoardGetDriverIDs", "", &driverIDs},
        {"_oamBoardGetBusSlot", "", &askNumbers<_oamBoardGetBusSlot>},
        {"_oamBoardGetShelfSlot", "", &askNumbers<_oamBoardGetShelfSlot>},
        {.name = "_oamBoardSetShelfSlot",
         .what = "",
         .call = [](World&) { return unsigned{_oamBoardSetShelfSlot(kBoard, 3, 4)}; },
         .undo = [](World&) { (void)_oamBoardSetShelfSlot(kBoard, 32, 32); }},
        {.name = "_oamBoardResetMACAddressCount",
         .what = "",
         .call = [](World&) { return unsigned{_oamBoardResetMACAddressCount(kBoard)}; },
         .prepare = &setMacAddress},
        {.name = "_oamBoardSetMACAddress",
         .what = "",
         .call = &setMacAddressNow,
         .undo = &resetMacAddress},
        {.name = "_oamBoardGetMACAddress",
         .what = "",
         .call =
             [](World& world) {
                 return unsigned{_oamBoardGetMACAddress(kBoard, world.text, sizeof world.text, 0)};
             },
         .prepare = &setMacAddress,
         .undo = &resetMacAddress},
        {"_oamBoardGetIOAddress", "", &askNumber<_oamBoardGetIOAddress>},
        {"_oamBoardGetSerialNumber", "",
         [](World& world) {
             return unsigned{_oamBoardGetSerialNumber(kBoard, world.text, sizeof world.text)};
         }},
        {"_oamBoardGetProduct", "",
         [](World& world) {
             return unsigned{_oamBoardGetProduct(kBoard, world.text, sizeof world.text)};
         }},
        {"_oamBoardGetAutoStartEnabled", "", &askNumber<_oamBoardGetAutoStartEnabled>},
        {"_oamBoardGetAutoStopEnabled", "", &askNumber<_oamBoardGetAutoStopEnabled>},
    };
}

}  // namespace oam::torture
