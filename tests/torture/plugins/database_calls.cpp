// The database: what entries are meant to use.
#include "inside_call.h"
#include "support/objects.h"

namespace oam::torture {

namespace {

const std::vector<unsigned> kAccess = {kNotRunning, kNotFound, kDenied, kNoMemory, kUnreadable};
const std::vector<unsigned> kClosing = {kNotRunning, kNotFound,   kDenied,    kExists,
                                        kNoMemory,   kUnreadable, kUnwritable};

unsigned open(const char* object, unsigned mode) {
    unsigned long handle = 0;
    if (auto failed = _oamDbOpenObject(object, &handle, mode)) return failed;
    (void)_oamDbCloseObject(handle);
    return OAM_SUCCESS;
}

unsigned close(Inside& inside) {
    if (inside.lent != 0) return _oamDbCloseObject(inside.lent);
    unsigned long handle = 0;
    if (auto failed = _oamDbOpenObject(kThing, &handle, test::kProvider)) return failed;
    return _oamDbCloseObject(handle);
}

InsideCall onHandle(const char* function, unsigned (*call)(Inside&)) {
    return {function, "", call, kAccess};
}

}  // namespace

std::vector<InsideCall> DatabaseCalls() {
    return {
        {"_oamDbOpenObject", "its own object to write",
         [](Inside&) { return open(kBoard, test::kProvider); }, kAccess},
        {"_oamDbOpenObject", "another", [](Inside&) { return open(kThing, test::kRead); }, kAccess},
        {"_oamDbCloseObject", "the one that it has", &close, kClosing},
        onHandle("_oamDbGetProviderMode",
                 [](Inside& inside) {
                     return OnHandle(inside, [](unsigned long handle) {
                         bool provider = false;
                         return unsigned{_oamDbGetProviderMode(handle, &provider)};
                     });
                 }),
        onHandle("_oamDbSetProviderMode",
                 [](Inside& inside) {
                     return OnHandle(inside, [](unsigned long handle) {
                         return unsigned{_oamDbSetProviderMode(handle, true)};
                     });
                 }),
        onHandle("_oamDbSetKeyword",
                 [](Inside& inside) {
                     return OnHandle(inside, [](unsigned long handle) {
                         return unsigned{_oamDbSetKeyword(handle, "Gain", "6")};
                     });
                 }),
        {"_oamDbSetKeyword",
         "a name that is taken",
         [](Inside& inside) {
             return OnHandle(inside, [](unsigned long handle) {
                 return unsigned{_oamDbSetKeyword(handle, "Name", kGoodBoard)};
             });
         },
         {kNotRunning, kNotFound, kDenied, kExists, kNoMemory}},
        onHandle("_oamDbGetKeyword",
                 [](Inside& inside) {
                     return OnHandle(inside, [](unsigned long handle) {
                         char text[128];
                         return unsigned{_oamDbGetKeyword(handle, "Name", text, sizeof text)};
                     });
                 }),
        onHandle("_oamDbRemoveKeyword",
                 [](Inside& inside) {
                     return OnHandle(inside, [](unsigned long handle) {
                         return unsigned{_oamDbRemoveKeyword(handle, "Name")};
                     });
                 }),
        onHandle("_oamDbSetQualifier",
                 [](Inside& inside) {
                     return OnHandle(inside, [](unsigned long handle) {
                         return unsigned{_oamDbSetQualifier(handle, "Gain", "Max", "12")};
                     });
                 }),
        onHandle("_oamDbRemoveQualifier",
                 [](Inside& inside) {
                     return OnHandle(inside, [](unsigned long handle) {
                         return unsigned{_oamDbRemoveQualifier(handle, "Name", "Type")};
                     });
                 }),
        onHandle("_oamDbGetQualifier",
                 [](Inside& inside) {
                     return OnHandle(inside, [](unsigned long handle) {
                         char text[128];
                         return unsigned{
                             _oamDbGetQualifier(handle, "Name", "Type", text, sizeof text)};
                     });
                 }),
        {"_oamDbEnumObjects",
         "",
         [](Inside&) {
             char text[128];
             return unsigned{_oamDbEnumObjects(0, text, sizeof text)};
         },
         {kNotRunning, kNotFound}},
        onHandle("_oamDbEnumKeywords",
                 [](Inside& inside) {
                     return OnHandle(inside, [](unsigned long handle) {
                         char text[128];
                         return unsigned{_oamDbEnumKeywords(handle, 0, text, sizeof text)};
                     });
                 }),
    };
}

}  // namespace oam::torture
