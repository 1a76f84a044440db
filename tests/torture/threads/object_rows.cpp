// Objects as clients use them: through the rules of the object and of its plug-in.
#include "caller.h"
#include "oam/entry.h"
#include "words.h"

namespace oam::torture {

namespace {

constexpr unsigned kBadBoardName = 7;

unsigned anyMode(Random& random) { return random.Below(4); }

void open(Caller& caller) { (void)caller.Open(caller.Object(), anyMode(caller.Chance()), false); }

void close(Caller& caller, bool isTold) {
    const Opening* opening = caller.SomeOpening(false, OAM_OPEN_READ);
    if (opening != nullptr) caller.Close(*opening, isTold);
}

void setOn(Caller& caller, const Opening& opening) {
    const KeywordValue change = AnyChange(caller.Chance(), opening.object);
    caller.Call("_oamSetKeyword",
                {OAM_SUCCESS, OAMERR_ACCESS_DENIED, OAMERR_NOT_FOUND, OAMERR_ALREADY_EXISTS,
                 OAMERR_SET_BOARD_KEYWORD_FAIL, kBadBoardName},
                [&] {
                    return unsigned{_oamSetKeyword(opening.handle, change.keyword.c_str(),
                                                   change.value.c_str())};
                });
}

void set(Caller& caller) {
    const unsigned mode = caller.Chance().OneIn(8) ? OAM_OPEN_READ : OAM_OPEN_WRITE;
    const Opening* opening = caller.SomeOpening(false, mode);
    if (opening != nullptr) setOn(caller, *opening);
}

// Like an operator: a setting, at once in force.
void changeSettings(Caller& caller) {
    const Opening* opening = caller.Open(kSupervisor, OAM_OPEN_WRITE, false);
    if (opening == nullptr) return;
    setOn(caller, *opening);
    caller.Close(*opening, true);
}

void get(Caller& caller) {
    const Opening* opening = caller.SomeOpening(false, OAM_OPEN_READ);
    if (opening == nullptr) return;
    const std::string keyword = AnyKeyword(caller.Chance(), opening->object);
    char text[128];
    caller.Call("_oamGetKeyword", {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_NOT_ENOUGH_MEMORY}, [&] {
        return unsigned{
            _oamGetKeyword(opening->handle, keyword.c_str(), text, AnySize(caller.Chance()))};
    });
}

void getQualifier(Caller& caller) {
    const Opening* opening = caller.SomeOpening(false, OAM_OPEN_READ);
    if (opening == nullptr) return;
    const std::string keyword = AnyKeyword(caller.Chance(), opening->object);
    const std::string qualifier = AnyQualifier(caller.Chance());
    char text[128];
    caller.Call("_oamGetQualifier", {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_NOT_ENOUGH_MEMORY}, [&] {
        return unsigned{_oamGetQualifier(opening->handle, keyword.c_str(), qualifier.c_str(), text,
                                         AnySize(caller.Chance()))};
    });
}

}  // namespace

std::vector<Row> ObjectRows() {
    return {{"_oamOpenObject", 4, &open},
            {"_oamCloseObject", 8, [](Caller& caller) { close(caller, true); }},
            {"_oamCloseObject_WOAN", 4, [](Caller& caller) { close(caller, false); }},
            {"_oamSetKeyword", 10, &set},
            {"_oamSetKeyword", 3, &changeSettings},
            {"_oamGetKeyword", 8, &get},
            {"_oamGetQualifier", 6, &getQualifier}};
}

}  // namespace oam::torture
