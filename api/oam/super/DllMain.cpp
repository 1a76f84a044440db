// The service's frame: start, stop, clients, and the names of the codes. Nothing here locks; the
// lifecycle calls run alone.

#include <algorithm>
#include <array>

#include "base/database_lock.h"
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

// In the codes' order.
constexpr auto kCodeNames = [] {
    std::array names = {
#define OAM_CODE(name, value) CodeName{value, #name},
#include "oam/codes.def"
#undef OAM_CODE
    };
    std::ranges::sort(names, {}, &CodeName::code);
    return names;
}();

void writeStartLine(const char* text) noexcept {
    (void)AlertNotify(OAMEVN_ALERT, OAM_INFORMATION, kSource, "%s", text);
}

oam_result stopAll() noexcept {
    SetOamIsRunning(false);
    BoardCommExit();
    EmcCommExit();
    ConfigExit();
    AlertExit();
    (void)AlertLogFileEnd();
    return OAM_SUCCESS;
}

oam_result startAll() noexcept {
    char path[oam::kPathSize];
    // Kept: the only failure that does not run stopAll; nothing has been started yet.
    if (auto failed = GetFullPath(false, "/oam/log/startup.log", path, sizeof path)) return failed;
    CreatePathDirs(path);
    (void)AlertLogFileBeg(path);
    for (const Stage& stage : kStages) {
        writeStartLine(stage.banner);
        if (auto failed = stage.init()) {
            (void)stopAll();
            return failed;
        }
        writeStartLine("\t\t\t\t\tDONE");
    }
    (void)AlertLogFileEnd();
    SetOamIsRunning(true);
    return OAM_SUCCESS;
}

constinit thread_local bool isStartingOrStopping = false;

// A plug-in, a component or the callback may ask for a start or stop while its own thread is in the
// middle of one, or of a change to the database: what it would take away is in use further up its
// stack.
template <class Steps>
oam_result runAlone(Steps steps) noexcept {
    if (isStartingOrStopping || oam::ManagerMutex::Depth() > 0) return OAMERR_ACCESS_DENIED;
    isStartingOrStopping = true;
    const oam_result result = steps();
    isStartingOrStopping = false;
    return result;
}

}  // namespace

void _oamHello(const char* text) noexcept { DebugOutput("%s\n", text != nullptr ? text : ""); }

void DebugOutput(const char*, ...) noexcept {}

oam_result _oamInit() noexcept { return OamIsRunning() ? OAM_SUCCESS : runAlone(&startAll); }

oam_result _oamExit() noexcept { return runAlone(&stopAll); }

oam_result _oamRestart() noexcept {
    return runAlone([] {
        (void)stopAll();
        return startAll();
    });
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
    const auto* row = std::ranges::lower_bound(kCodeNames, code, {}, &CodeName::code);
    if (row != kCodeNames.end() && row->code == code) return row->name;
    if (const char* text = EmcGetText(code)) return text;
    return BoardCommGetText(code);
}
