// Start and stop, clients, texts and alerts.
#include "inside_call.h"
#include "support/objects.h"

namespace oam::torture {

namespace {

// What a start may answer besides what the modules' entries do.
const std::vector<unsigned> kStart = {kDenied, kNoMemory, kUnreadable, kUnwritable};

unsigned raise(unsigned event, const char* text) {
    return test::Raise(event, OAM_WARNING, kBoard, text);
}

unsigned ignoreAlert(unsigned long, const oam_msg_tag*) { return OAM_SUCCESS; }

unsigned replaceCallback(Inside& inside) {
    const unsigned code = _oamAlertRegisterCallback(&ignoreAlert);
    inside.world.alerts.Install();
    return code;
}

}  // namespace

std::vector<InsideCall> LifecycleCalls() {
    return {
        {"_oamHello", "",
         [](Inside&) {
             _oamHello("hello");
             return 0u;
         }},
        {"DebugOutput", "",
         [](Inside&) {
             DebugOutput("%s", "text");
             return 0u;
         }},
        {"_oamInit", "", [](Inside&) { return unsigned{_oamInit()}; }, kStart},
        {"_oamExit", "", [](Inside&) { return unsigned{_oamExit()}; }, {kDenied}},
        {"_oamRestart", "", [](Inside&) { return unsigned{_oamRestart()}; }, kStart},
        {"_oamShutdown", "", [](Inside&) { return unsigned{_oamShutdown()}; }, {kDenied}},
        {"_oamClientInit",
         "",
         [](Inside&) { return unsigned{_oamClientInit(test::kClient)}; },
         {kNotRunning}},
        {"_oamClientExit",
         "the one that is served",
         [](Inside&) { return unsigned{_oamClientExit(test::kClient)}; },
         {kNotRunning}},
        {"_oamGetText", "a module's",
         [](Inside&) { return _oamGetText(0x51000002) == nullptr ? 0u : 1u; }},
        {"_oamAlertRegisterCallback", "", &replaceCallback},
        {"_oamAlertRegister",
         "",
         [](Inside&) { return unsigned{_oamAlertRegister(12)}; },
         {kExists, kNoMemory}},
        {"_oamAlertUnregister",
         "",
         [](Inside&) { return unsigned{_oamAlertUnregister(12)}; },
         {kNotFound, kNoMemory}},
        {"_oamAlertNotify",
         "event",
         [](Inside&) { return raise(OAMEVN_FAN_RPM_WARNING, "it is slow"); },
         {kNotRunning, kDenied, kNoMemory}},
        {"_oamAlertNotify",
         "report",
         [](Inside&) { return raise(OAMEVN_REPORT, "all is well"); },
         {kNotRunning, kDenied, kUnwritable}},
    };
}

}  // namespace oam::torture
