// The board queries.
#include "inside_call.h"

namespace oam::torture {

namespace {

using Text = char[128];

// A query that answers a text.
template <class Ask>
std::function<unsigned(Inside&)> askText(Ask ask) {
    return [ask](Inside&) {
        Text text;
        return unsigned{ask(text, sizeof text)};
    };
}

template <oam_result (*Ask)(const char*, unsigned*) noexcept>
unsigned askNumber(Inside&) {
    unsigned number = 0;
    return Ask(kBoard, &number);
}

template <oam_result (*Ask)(const char*, unsigned*, unsigned*) noexcept>
unsigned askNumbers(Inside&) {
    unsigned first = 0;
    unsigned second = 0;
    return Ask(kBoard, &first, &second);
}

unsigned askDriver(Inside&) {
    Text name;
    Text id;
    return _oamBoardGetDriverIDs(kBoard, name, sizeof name, id, sizeof id);
}

unsigned setAddress(Inside&) {
    char texts[1][OAM_MAC_TEXT_SIZE] = {"00:11:22:33:44:55"};
    return _oamBoardSetMACAddress(kBoard, texts, 1);
}

InsideCall query(const char* function, std::function<unsigned(Inside&)> call) {
    return {function, "", std::move(call), {kNotRunning, kNotFound, kNoMemory}};
}

}  // namespace

std::vector<InsideCall> QueryCalls() {
    return {
        query("_oamBoardEnum",
              askText([](char* text, unsigned size) { return _oamBoardEnum(0, text, size); })),
        query("_oamBoardLookupByNumber", askText([](char* text, unsigned size) {
                  return _oamBoardLookupByNumber(0, text, size);
              })),
        query("_oamBoardLookupByDriverIDs", askText([](char* text, unsigned size) {
                  return _oamBoardLookupByDriverIDs("", "", text, size);
              })),
        query("_oamBoardLookupByBusSlot", askText([](char* text, unsigned size) {
                  return _oamBoardLookupByBusSlot(0, 0, text, size);
              })),
        query("_oamBoardLookupByShelfSlot", askText([](char* text, unsigned size) {
                  return _oamBoardLookupByShelfSlot(32, 32, text, size);
              })),
        query("_oamBoardLookupByIOAddress", askText([](char* text, unsigned size) {
                  return _oamBoardLookupByIOAddress(0, text, size);
              })),
        query("_oamBoardLookupBySerialNumber", askText([](char* text, unsigned size) {
                  return _oamBoardLookupBySerialNumber("", text, size);
              })),
        query("_oamBoardLookupByProduct", askText([](char* text, unsigned size) {
                  return _oamBoardLookupByProduct(kProduct, text, size);
              })),
        query("_oamBoardLookupByMACAddress", askText([](char* text, unsigned size) {
                  return _oamBoardLookupByMACAddress("00:11:22:33:44:55", text, size);
              })),
        query("_oamBoardGetNumber", &askNumber<_oamBoardGetNumber>),
        query("_oamBoardGetDriverIDs", &askDriver),
        query("_oamBoardGetBusSlot", &askNumbers<_oamBoardGetBusSlot>),
        query("_oamBoardGetShelfSlot", &askNumbers<_oamBoardGetShelfSlot>),
        query("_oamBoardSetShelfSlot",
              [](Inside&) { return unsigned{_oamBoardSetShelfSlot(kBoard, 3, 4)}; }),
        query("_oamBoardResetMACAddressCount",
              [](Inside&) { return unsigned{_oamBoardResetMACAddressCount(kBoard)}; }),
        query("_oamBoardSetMACAddress", &setAddress),
        query("_oamBoardGetMACAddress", askText([](char* text, unsigned size) {
                  return _oamBoardGetMACAddress(kBoard, text, size, 0);
              })),
        query("_oamBoardGetIOAddress", &askNumber<_oamBoardGetIOAddress>),
        query("_oamBoardGetSerialNumber", askText([](char* text, unsigned size) {
                  return _oamBoardGetSerialNumber(kBoard, text, size);
              })),
        query("_oamBoardGetProduct", askText([](char* text, unsigned size) {
                  return _oamBoardGetProduct(kBoard, text, size);
              })),
        query("_oamBoardGetAutoStartEnabled", &askNumber<_oamBoardGetAutoStartEnabled>),
        query("_oamBoardGetAutoStopEnabled", &askNumber<_oamBoardGetAutoStopEnabled>),
    };
}

}  // namespace oam::torture
