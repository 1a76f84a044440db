// The entries that a plug-in and a component have in common. RECORDER_WITHOUT_... leaves one out.
#ifdef RECORDER_COMPONENT
#include "oam/component.h"
#else
#include "oam/plugin.h"
#endif

#include "plugins/recorder/call.h"

using oam::test::AnswerText;
using oam::test::Called;
using oam::test::CalledScript;
using oam::test::ListedKeyword;
using oam::test::Shown;

unsigned int Init(const char* fileName) {
    const CalledScript script = Called("Init", {Shown(fileName)});
    if (script.answer) return *script.answer;
    return script.init ? script.init(fileName) : OAM_SUCCESS;
}

unsigned int Exit() {
    const CalledScript script = Called("Exit");
    if (script.answer) return *script.answer;
    return script.exit ? script.exit() : OAM_SUCCESS;
}

#ifndef RECORDER_WITHOUT_GET_TEXT
const char* GetText(unsigned int code) {
    const CalledScript script = Called("GetText", {std::to_string(code)});
    if (script.answer) return nullptr;
    if (script.getText) return script.getText(code);
    auto found = script.texts.find(code);
    return found == script.texts.end() ? nullptr : found->second;
}
#endif

#ifndef RECORDER_WITHOUT_ALERT_RECEIVE
unsigned int AlertReceive(const oam_msg_tag* message) {
    const CalledScript script =
        Called("AlertReceive",
               {std::to_string(message->code), oamMessageSource(message), oamMessageText(message)});
    if (script.answer) return *script.answer;
    return script.alertReceive ? script.alertReceive(message) : OAM_SUCCESS;
}
#endif

unsigned int OpenObject(unsigned long handle, unsigned int mode) {
    const CalledScript script = Called("OpenObject", {std::to_string(mode)}, {.handle = handle});
    if (script.answer) return *script.answer;
    return script.openObject ? script.openObject(handle, mode) : OAM_SUCCESS;
}

unsigned int CloseObject(unsigned long handle) {
    const CalledScript script = Called("CloseObject", {}, {.handle = handle});
    if (script.answer) return *script.answer;
    return script.closeObject ? script.closeObject(handle) : OAM_SUCCESS;
}

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    const CalledScript script =
        Called("SetKeyword", {Shown(keyword), Shown(value)}, {.handle = handle});
    if (script.answer) return *script.answer;
    if (script.setKeyword) return script.setKeyword(handle, keyword, value);
    return _oamDbSetKeyword(handle, keyword, value);
}

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    const CalledScript script = Called("GetKeyword", {Shown(keyword), std::to_string(size)},
                                       {.handle = handle, .nullBuffer = buffer == nullptr});
    if (script.answer) return *script.answer;
    if (script.getKeyword) return script.getKeyword(handle, keyword, buffer, size);
    if (auto listed = ListedKeyword(script, keyword)) return AnswerText(*listed, buffer, size);
    return _oamDbGetKeyword(handle, keyword, buffer, size);
}

#ifndef RECORDER_WITHOUT_GET_QUALIFIER
unsigned int GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                          char* buffer, unsigned int size) {
    const CalledScript script =
        Called("GetQualifier", {Shown(keyword), Shown(qualifier), std::to_string(size)},
               {.handle = handle, .nullBuffer = buffer == nullptr});
    if (script.answer) return *script.answer;
    if (script.getQualifier) return script.getQualifier(handle, keyword, qualifier, buffer, size);
    return _oamDbGetQualifier(handle, keyword, qualifier, buffer, size);
}
#endif
