// The service's frame: start, stop, clients, and the names of the codes. Nothing here locks; the
// lifecycle calls run alone.

#include "base/flags.h"
#include "base/path.h"
#include "base/text.h"
#include "doors/alert.h"
#include "doors/board.h"
#include "doors/config.h"
#include "doors/emc.h"

bool g_bOamIsRunning = false;

namespace {

constexpr char kSource[] = "DllMain";

struct Stage {
    const char* banner;
    oam_result (*init)() noexcept;
};

#define BANNER(text)                                       \
    "*********************************\n            " text \
    "\n            "                                       \
    "*********************************"

constexpr Stage kStages[] = {
    {BANNER("Initialize Alert System"), &AlertInit},
    {BANNER("Initialize XMO File"), &ConfigInit},
    {BANNER("Initialize EMC Components"), &EmcCommInit},
    {BANNER("Initializing Plug-in Components"), &BoardCommInit},  // Kept: not "Initialize".
};

struct CodeName {
    unsigned code;
    const char* name;
};

constexpr CodeName kCodeNames[] = {
#define OAM_CODE(name, value) {value, #name},
#include "oam/codes.def"
#undef OAM_CODE
};

void writeStartLine(const char* text) noexcept {
    (void)AlertNotify(OAMEVN_ALERT, OAM_INFORMATION, kSource, "%s", text);
}

}  // namespace

void _oamHello(const char* text) noexcept { DebugOutput("%s\n", text != nullptr ? text : ""); }

void DebugOutput(const char*, ...) noexcept {}

oam_result _oamInit() noexcept {
    if (OamIsRunning()) return OAM_SUCCESS;
    char path[oam::kPathSize];
    // Kept: the only failure that does not run _oamExit; nothing has been started yet.
    if (auto failed = GetFullPath(false, "/oam/log/startup.log", path, sizeof path)) return failed;
    CreatePathDirs(path);
    (void)AlertLogFileBeg(path);
    for (const Stage& stage : kStages) {
        writeStartLine(stage.banner);
        if (auto failed = stage.init()) {
            (void)_oamExit();
            return failed;
        }
        writeStartLine("\t\t\t\t\tDONE");
    }
    (void)AlertLogFileEnd();
    SetOamIsRunning(true);
    return OAM_SUCCESS;
}

oam_result _oamExit() noexcept {
    SetOamIsRunning(false);
    BoardCommExit();
    EmcCommExit();
    ConfigExit();
    AlertExit();
    (void)AlertLogFileEnd();
    return OAM_SUCCESS;
}

oam_result _oamRestart() noexcept {
    (void)_oamExit();
    return _oamInit();
}

oam_result _oamShutdown() noexcept { return _oamExit(); }

oam_result _oamClientInit(unsigned long) noexcept {
    return OamIsRunning() ? OAM_SUCCESS : OAMERR_SERVER_NOT_RUNNING;
}

oam_result _oamClientExit(unsigned long client) noexcept {
    if (!OamIsRunning()) return OAMERR_SERVER_NOT_RUNNING;
    (void)_oamAlertUnregister(client);
    (void)OpenObjectsCleanup(client);
    return OAM_SUCCESS;
}

const char* _oamGetText(unsigned code) noexcept {
    for (const CodeName& row : kCodeNames) {
        if (row.code == code) return row.name;
    }
    if (const char* text = EmcGetText(code)) return text;
    return BoardCommGetText(code);
}
