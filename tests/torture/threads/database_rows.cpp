// Objects as plug-ins use them: as they are stored.
#include "caller.h"
#include "oam/entry.h"
#include "words.h"

namespace oam::torture {

namespace {

constexpr unsigned kProvider = OAM_OPEN_WRITE | OAM_OPEN_PROVIDER;

// A handle for an operation that needs so much, now and then one that has less.
const Opening* opened(Caller& caller, unsigned mode) {
    return caller.SomeOpening(true, caller.Chance().OneIn(6) ? unsigned{OAM_OPEN_READ} : mode);
}

void open(Caller& caller) { (void)caller.Open(caller.Object(), caller.Chance().Below(4), true); }

void close(Caller& caller) {
    if (const Opening* opening = opened(caller, OAM_OPEN_READ)) caller.Close(*opening, true);
}

void getProviderMode(Caller& caller) {
    const Opening* opening = opened(caller, OAM_OPEN_READ);
    if (opening == nullptr) return;
    caller.Call("_oamDbGetProviderMode", {OAM_SUCCESS}, [&] {
        bool isProvider = false;
        return unsigned{_oamDbGetProviderMode(opening->handle, &isProvider)};
    });
}

void setProviderMode(Caller& caller) {
    const Opening* opening = opened(caller, OAM_OPEN_READ);
    if (opening == nullptr) return;
    caller.Call("_oamDbSetProviderMode", {OAM_SUCCESS}, [&] {
        return unsigned{_oamDbSetProviderMode(opening->handle, !caller.Chance().OneIn(3))};
    });
}

void set(Caller& caller) {
    const Opening* opening = opened(caller, kProvider);
    if (opening == nullptr) return;
    const KeywordValue change = AnyStoredChange(caller.Chance(), opening->object);
    caller.Call(
        "_oamDbSetKeyword", {OAM_SUCCESS, OAMERR_ACCESS_DENIED, OAMERR_ALREADY_EXISTS}, [&] {
            return unsigned{
                _oamDbSetKeyword(opening->handle, change.keyword.c_str(), change.value.c_str())};
        });
}

void get(Caller& caller) {
    const Opening* opening = opened(caller, OAM_OPEN_READ);
    if (opening == nullptr) return;
    const std::string keyword = caller.Chance().OneIn(2)
                                    ? "Name"
                                    : AnyStoredChange(caller.Chance(), opening->object).keyword;
    char text[128];
    caller.Call("_oamDbGetKeyword", {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_NOT_ENOUGH_MEMORY}, [&] {
        return unsigned{
            _oamDbGetKeyword(opening->handle, keyword.c_str(), text, AnySize(caller.Chance()))};
    });
}

// Without its name an object cannot be committed.
void remove(Caller& caller) {
    const Opening* opening = opened(caller, kProvider);
    if (opening == nullptr) return;
    const std::string keyword =
        caller.Chance().OneIn(8) ? "Name" : "Torture." + std::to_string(caller.Chance().Below(5));
    caller.Call("_oamDbRemoveKeyword", {OAM_SUCCESS, OAMERR_ACCESS_DENIED, OAMERR_NOT_FOUND},
                [&] { return unsigned{_oamDbRemoveKeyword(opening->handle, keyword.c_str())}; });
}

void setQualifier(Caller& caller) {
    const Opening* opening = opened(caller, kProvider);
    if (opening == nullptr) return;
    caller.Call("_oamDbSetQualifier", {OAM_SUCCESS, OAMERR_ACCESS_DENIED}, [&] {
        return unsigned{_oamDbSetQualifier(opening->handle, "Torture.0", "Torture", "value")};
    });
}

void removeQualifier(Caller& caller) {
    const Opening* opening = opened(caller, kProvider);
    if (opening == nullptr) return;
    caller.Call(
        "_oamDbRemoveQualifier", {OAM_SUCCESS, OAMERR_ACCESS_DENIED, OAMERR_NOT_FOUND},
        [&] { return unsigned{_oamDbRemoveQualifier(opening->handle, "Torture.0", "Torture")}; });
}

void getQualifier(Caller& caller) {
    const Opening* opening = opened(caller, OAM_OPEN_READ);
    if (opening == nullptr) return;
    char text[128];
    caller.Call("_oamDbGetQualifier", {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_NOT_ENOUGH_MEMORY},
                [&] {
                    return unsigned{_oamDbGetQualifier(opening->handle, "Name",
                                                       AnyQualifier(caller.Chance()).c_str(), text,
                                                       AnySize(caller.Chance()))};
                });
}

void enumObjects(Caller& caller) {
    char text[128];
    caller.Call(
        "_oamDbEnumObjects", {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_NOT_ENOUGH_MEMORY}, [&] {
            return unsigned{_oamDbEnumObjects(static_cast<int>(caller.Chance().Below(15)) - 1, text,
                                              AnySize(caller.Chance()))};
        });
}

void enumKeywords(Caller& caller) {
    const Opening* opening = opened(caller, OAM_OPEN_READ);
    if (opening == nullptr) return;
    char text[128];
    caller.Call(
        "_oamDbEnumKeywords", {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_NOT_ENOUGH_MEMORY}, [&] {
            return unsigned{_oamDbEnumKeywords(opening->handle,
                                               static_cast<int>(caller.Chance().Below(60)) - 1,
                                               text, AnySize(caller.Chance()))};
        });
}

}  // namespace

std::vector<Row> DatabaseRows() {
    return {{"_oamDbOpenObject", 3, &open},
            {"_oamDbCloseObject", 6, &close},
            {"_oamDbGetProviderMode", 2, &getProviderMode},
            {"_oamDbSetProviderMode", 3, &setProviderMode},
            {"_oamDbSetKeyword", 6, &set},
            {"_oamDbGetKeyword", 4, &get},
            {"_oamDbRemoveKeyword", 4, &remove},
            {"_oamDbSetQualifier", 3, &setQualifier},
            {"_oamDbRemoveQualifier", 3, &removeQualifier},
            {"_oamDbGetQualifier", 3, &getQualifier},
            {"_oamDbEnumObjects", 4, &enumObjects},
            {"_oamDbEnumKeywords", 4, &enumKeywords}};
}

}  // namespace oam::torture
