// The board shadow, read by the process that also writes it.
#include "oam/shadow.h"

#include "caller.h"
#include "words.h"

namespace oam::torture {

namespace {

// Without a view there is nothing to read: not enough memory.
constexpr Codes kShadowCodes = {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_NOT_ENOUGH_MEMORY};

// A view that is replaced is not released, so there are not to be too many.
void init(Caller& caller) {
    if (oamShadowGetPtr() != nullptr && !caller.Chance().OneIn(50)) return;
    caller.Call("oamShadowInit", {OAM_SUCCESS}, [] { return unsigned{oamShadowInit()}; });
}

// Given up seldom: the others are to find something.
void exit(Caller& caller) {
    caller.Call("oamShadowExit", {OAM_SUCCESS}, [] { return unsigned{oamShadowExit()}; });
}

void getPtr(Caller& caller) {
    caller.Call("oamShadowGetPtr", {OAM_SUCCESS}, [] {
        (void)oamShadowGetPtr();
        return 0u;
    });
}

void enumerate(Caller& caller) {
    char text[130];
    caller.Call("oamShadowBoardEnum", kShadowCodes, [&] {
        return unsigned{oamShadowBoardEnum(0, static_cast<int>(caller.Chance().Below(12)) - 1, text,
                                           AnySize(caller.Chance()))};
    });
}

void lookupByNumber(Caller& caller) {
    char text[130];
    caller.Call("oamShadowBoardLookupByNumber", kShadowCodes, [&] {
        return unsigned{oamShadowBoardLookupByNumber(0, caller.Chance().Below(10), text,
                                                     AnySize(caller.Chance()))};
    });
}

void lookupByDriverIDs(Caller& caller) {
    char text[130];
    caller.Call("oamShadowBoardLookupByDriverIDs", kShadowCodes, [&] {
        return unsigned{
            oamShadowBoardLookupByDriverIDs(0, "sim", "", text, AnySize(caller.Chance()))};
    });
}

void number(Caller& caller) {
    const std::string board = caller.Board();
    unsigned answered = 0;
    caller.Call("oamShadowBoardGetNumber", kShadowCodes,
                [&] { return unsigned{oamShadowBoardGetNumber(0, board.c_str(), &answered)}; });
}

void driverIDs(Caller& caller) {
    const std::string board = caller.Board();
    char text[130];
    char more[130];
    const unsigned size = AnySize(caller.Chance());
    caller.Call("oamShadowBoardGetDriverIDs", kShadowCodes, [&] {
        return unsigned{oamShadowBoardGetDriverIDs(0, board.c_str(), text, size, more, size)};
    });
}

void isUsingVxPlugin(Caller& caller) {
    bool isUsing = false;
    caller.Call("oamShadowBoardGetIsUsingVxPlugin", kShadowCodes,
                [&] { return unsigned{oamShadowBoardGetIsUsingVxPlugin(0, &isUsing)}; });
}

void isUsingALaw(Caller& caller) {
    const std::string board = caller.Board();
    bool isUsing = false;
    caller.Call("oamShadowBoardIsUsingALaw", kShadowCodes,
                [&] { return unsigned{oamShadowBoardIsUsingALaw(0, board.c_str(), &isUsing)}; });
}

}  // namespace

std::vector<Row> ShadowRows() {
    return {{"oamShadowInit", 8, &init},
            {"oamShadowExit", 1, &exit},
            {"oamShadowGetPtr", 1, &getPtr},
            {"oamShadowBoardEnum", 2, &enumerate},
            {"oamShadowBoardLookupByNumber", 2, &lookupByNumber},
            {"oamShadowBoardLookupByDriverIDs", 2, &lookupByDriverIDs},
            {"oamShadowBoardGetNumber", 2, &number},
            {"oamShadowBoardGetDriverIDs", 2, &driverIDs},
            {"oamShadowBoardGetIsUsingVxPlugin", 2, &isUsingVxPlugin},
            {"oamShadowBoardIsUsingALaw", 2, &isUsingALaw}};
}

}  // namespace oam::torture
