// The nine entries of the component: nothing but the way in.
#include <string>

#include "kit/life.h"
#include "oam/component.h"
#include "watch.h"
#include "watch_code.h"

namespace {

using oam::watch::Watch;
using Life = oam::kit::Life<Watch>;

template <class Body>
unsigned int withWatch(const Body& body) noexcept {
    return Life::Place().With(body);
}

}  // namespace

unsigned int Init(const char* fileName) { return Life::Place().Begin(std::string(fileName)); }

unsigned int Exit() { return Life::Place().End(); }

const char* GetText(unsigned int code) { return oam::watch::codeName(code); }

unsigned int AlertReceive(const oam_msg_tag* message) {
    return withWatch([&](Watch& watch) {
        watch.ReceiveAlert(message);
        return OAM_SUCCESS;
    });
}

unsigned int OpenObject(unsigned long handle, unsigned int mode) {
    return withWatch([&](Watch& watch) { return watch.OpenObject(handle, mode); });
}

unsigned int CloseObject(unsigned long handle) {
    return withWatch([&](Watch& watch) { return watch.CloseObject(handle); });
}

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    if (keyword == nullptr || value == nullptr) return OAMERR_SET_BOARD_KEYWORD_FAIL;
    return withWatch([&](Watch& watch) { return watch.SetKeyword(handle, keyword, value); });
}

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    if (keyword == nullptr) return OAMERR_NOT_FOUND;
    return withWatch([&](Watch& watch) { return watch.GetKeyword(handle, keyword, buffer, size); });
}

unsigned int GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                          char* buffer, unsigned int size) {
    if (keyword == nullptr || qualifier == nullptr) return OAMERR_NOT_FOUND;
    return withWatch(
        [&](Watch& watch) { return watch.GetQualifier(handle, keyword, qualifier, buffer, size); });
}
