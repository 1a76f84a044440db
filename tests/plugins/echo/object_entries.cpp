// The entries that both modules have. Their objects are stored as they are, and have no rules.
#include <atomic>
#include <cstdio>
#include <cstring>

#include "echo.h"
#include "oam/component.h"

using namespace oam::echo;

namespace {

// The one product, for the service to read; a component's is not asked for.
const char* computed(const char* keyword) {
    if (strcmp(keyword, "Products.Count") == 0) return "1";
    if (strcmp(keyword, "Products[0]") == 0) return kProduct;
    return nullptr;
}

unsigned answer(const char* text, char* buffer, unsigned size) {
    if (buffer == nullptr) return OAM_SUCCESS;
    if (strlen(text) >= size) return OAMERR_NOT_ENOUGH_MEMORY;
    strcpy(buffer, text);
    return OAM_SUCCESS;
}

}  // namespace

unsigned int Init(const char* fileName) {
    SetName(fileName);
    Raise(kEchoed, fileName, "begun");
    return OAM_SUCCESS;
}

unsigned int Exit() {
    Raise(kEchoed, Name(), "ended");
    return OAM_SUCCESS;
}

const char* GetText(unsigned int code) {
    if (code == kEchoed) return "ECHOED";
    return code == kUnwell ? "UNWELL" : nullptr;
}

unsigned int AlertReceive(const oam_msg_tag* message) { return HearAndAnswer(message); }

unsigned int OpenObject(unsigned long, unsigned int) { return OAM_SUCCESS; }

unsigned int CloseObject(unsigned long) { return OAM_SUCCESS; }

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    return _oamDbSetKeyword(handle, keyword, value);
}

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    const char* text = computed(keyword);
    return text != nullptr ? answer(text, buffer, size)
                           : unsigned{_oamDbGetKeyword(handle, keyword, buffer, size)};
}

unsigned int GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                          char* buffer, unsigned int size) {
    return _oamDbGetQualifier(handle, keyword, qualifier, buffer, size);
}
