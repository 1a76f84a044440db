// The board shadow, as any process reads it.
#include <cstdio>

#include "row.h"

namespace oam::torture {

namespace {

void attach(World&) {
    if (oamShadowGetPtr() == nullptr) (void)oamShadowInit();
}

unsigned number(World& world) {
    unsigned answered = 0;
    const unsigned code = oamShadowBoardGetNumber(0, kBoard, &answered);
    std::snprintf(world.text, sizeof world.text, "%u", answered);
    return code;
}

unsigned driverIDs(World& world) {
    char id[128];
    return oamShadowBoardGetDriverIDs(0, kBoard, world.text, sizeof world.text, id, sizeof id);
}

unsigned isUsingVxPlugin(World&) {
    bool isUsing = false;
    return oamShadowBoardGetIsUsingVxPlugin(0, &isUsing);
}

unsigned isUsingALaw(World&) {
    bool aLaw = false;
    return oamShadowBoardIsUsingALaw(0, kBoard, &aLaw);
}

}  // namespace

std::vector<Row> ShadowRows() {
    return {
        {.name = "oamShadowInit",
         .what = "",
         .call = [](World&) { return unsigned{oamShadowInit()}; },
         .failures = {kNoMemory},
         .prepare = [](World&) { (void)oamShadowExit(); },
         .undo = &attach,
         .isVital = true},
        {.name = "oamShadowExit",
         .what = "",
         .call = [](World&) { return unsigned{oamShadowExit()}; },
         .undo = &attach},
        {"oamShadowGetPtr", "", [](World&) { return oamShadowGetPtr() != nullptr ? 0u : 1u; }},
        {"oamShadowBoardEnum", "",
         [](World& world) {
             return unsigned{
                 oamShadowBoardEnum(0, world.Count() - 1, world.text, sizeof world.text)};
         }},
        {"oamShadowBoardLookupByNumber", "",
         [](World& world) {
             return unsigned{oamShadowBoardLookupByNumber(0, 0, world.text, sizeof world.text)};
         }},
        {"oamShadowBoardLookupByDriverIDs", "",
         [](World& world) {
             return unsigned{
                 oamShadowBoardLookupByDriverIDs(0, "", "", world.text, sizeof world.text)};
         }},
        {"oamShadowBoardGetNumber", "", &number},
        {"oamShadowBoardGetDriverIDs", "", &driverIDs},
        {"oamShadowBoardGetIsUsingVxPlugin", "", &isUsingVxPlugin},
        {"oamShadowBoardIsUsingALaw", "", &isUsingALaw},
    };
}

}  // namespace oam::torture
