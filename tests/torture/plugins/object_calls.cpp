// Objects as clients use them: every one of these may come back to the module.
#include "inside_call.h"
#include "support/objects.h"

namespace oam::torture {

namespace {

const std::vector<unsigned> kOpening = {kNotRunning, kNotFound, kDenied, kNoMemory, kUnreadable};
const std::vector<unsigned> kClosing = {kNotRunning, kNotFound,   kDenied,    kExists,
                                        kNoMemory,   kUnreadable, kUnwritable};
const std::vector<unsigned> kAccess = {kNotRunning, kNotFound, kDenied, kNoMemory, kUnreadable};

template <oam_result (*Close)(unsigned long) noexcept>
unsigned openAndClose(unsigned long client, const char* object, unsigned mode) {
    unsigned long handle = 0;
    if (auto failed = _oamOpenObject(client, object, &handle, mode)) return failed;
    return Close(handle);
}

unsigned open(unsigned long client, const char* object, unsigned mode) {
    return openAndClose<_oamCloseObject_WOAN>(client, object, mode);
}

unsigned leaveOpen(Inside&) {
    unsigned long handle = 0;
    return _oamOpenObject(test::kClient, kBoard, &handle, test::kRead);
}

// The lent one, or one of its own.
template <oam_result (*Close)(unsigned long) noexcept>
unsigned close(Inside& inside) {
    if (inside.lent != 0) return Close(inside.lent);
    return openAndClose<Close>(test::kClient, kOtherBoard, test::kWrite);
}

unsigned rename(Inside&) {
    unsigned long handle = 0;
    if (auto failed = _oamOpenObject(test::kClient, kOtherBoard, &handle, test::kWrite))
        return failed;
    const unsigned set = _oamSetKeyword(handle, "Name", "Prod 9");
    const unsigned closed = _oamCloseObject(handle);
    return set != OAM_SUCCESS ? set : closed;
}

}  // namespace

std::vector<InsideCall> ObjectCalls() {
    return {
        {"_oamOpenObject", "its own object to write",
         [](Inside&) { return open(test::kClient, kBoard, test::kWrite); }, kOpening},
        {"_oamOpenObject", "its own object, waiting for it",
         [](Inside&) { return open(OAM_INTERNAL_CLIENT, kBoard, test::kWrite); }, kOpening},
        {"_oamOpenObject", "a plug-in's",
         [](Inside&) { return open(test::kClient, kPlugin, test::kRead); }, kOpening},
        {"_oamOpenObject", "a component's",
         [](Inside&) { return open(test::kClient, kComponent, test::kRead); }, kOpening},
        {"_oamOpenObject", "the Supervisor's",
         [](Inside&) { return open(test::kClient, "Supervisor", test::kWrite); }, kOpening},
        {"_oamOpenObject", "its own object, left open", &leaveOpen, kOpening},
        {"_oamCloseObject", "the one that it has", &close<_oamCloseObject>, kClosing},
        {"_oamCloseObject", "of a renamed board", &rename, kClosing},
        {"_oamCloseObject_WOAN", "the one that it has", &close<_oamCloseObject_WOAN>, kClosing},
        {"_oamSetKeyword", "",
         [](Inside& inside) {
             return OnHandle(inside, [](unsigned long handle) {
                 return unsigned{_oamSetKeyword(handle, "Gain", "4")};
             });
         },
         kAccess},
        {"_oamGetKeyword", "",
         [](Inside& inside) {
             return OnHandle(inside, [](unsigned long handle) {
                 char text[128];
                 return unsigned{_oamGetKeyword(handle, "Name", text, sizeof text)};
             });
         },
         kAccess},
        {"_oamGetQualifier", "",
         [](Inside& inside) {
             return OnHandle(inside, [](unsigned long handle) {
                 char text[128];
                 return unsigned{_oamGetQualifier(handle, "Name", "Type", text, sizeof text)};
             });
         },
         kAccess},
    };
}

}  // namespace oam::torture
