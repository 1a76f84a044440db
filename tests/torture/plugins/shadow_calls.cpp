// The board shadow.
#include "inside_call.h"

namespace oam::torture {

namespace {

const std::vector<unsigned> kReading = {kNotFound, kNoMemory};

using Text = char[128];

InsideCall reading(const char* function, unsigned (*call)(Inside&)) {
    return {function, "", call, kReading};
}

}  // namespace

std::vector<InsideCall> ShadowCalls() {
    return {
        {"oamShadowInit", "", [](Inside&) { return unsigned{oamShadowInit()}; }, {kNoMemory}},
        {"oamShadowExit", "", [](Inside&) { return unsigned{oamShadowExit()}; }},
        {"oamShadowGetPtr", "",
         [](Inside&) {
             (void)oamShadowGetPtr();
             return 0u;
         }},
        reading("oamShadowBoardEnum",
                [](Inside&) {
                    Text text;
                    return unsigned{oamShadowBoardEnum(0, 0, text, sizeof text)};
                }),
        reading("oamShadowBoardLookupByNumber",
                [](Inside&) {
                    Text text;
                    return unsigned{oamShadowBoardLookupByNumber(0, 0, text, sizeof text)};
                }),
        reading("oamShadowBoardLookupByDriverIDs",
                [](Inside&) {
                    Text text;
                    return unsigned{oamShadowBoardLookupByDriverIDs(0, "", "", text, sizeof text)};
                }),
        reading("oamShadowBoardGetNumber",
                [](Inside&) {
                    unsigned number = 0;
                    return unsigned{oamShadowBoardGetNumber(0, kBoard, &number)};
                }),
        reading("oamShadowBoardGetDriverIDs",
                [](Inside&) {
                    Text name;
                    Text id;
                    return unsigned{
                        oamShadowBoardGetDriverIDs(0, kBoard, name, sizeof name, id, sizeof id)};
                }),
        reading("oamShadowBoardGetIsUsingVxPlugin",
                [](Inside&) {
                    bool isUsing = false;
                    return unsigned{oamShadowBoardGetIsUsingVxPlugin(0, &isUsing)};
                }),
        reading("oamShadowBoardIsUsingALaw",
                [](Inside&) {
                    bool aLaw = false;
                    return unsigned{oamShadowBoardIsUsingALaw(0, kBoard, &aLaw)};
                }),
    };
}

}  // namespace oam::torture
