// CMOSuper: the service's own settings, kept as keywords of the object "Supervisor".
//
// A commit stages the settings first (ValidateChanges) and applies them when the object is saved
// (HandleChanges). Switching "OammonLog" opens or closes the board trace log.

#include <cstdio>

#include "base/flags.h"
#include "base/path.h"
#include "doors/alert.h"
#include "keyword_trap.h"
#include "objects/kinds.h"

using oam::CopyText;
using oam::EqualNoCase;

namespace {

constexpr int kVersionMajor = 1;
constexpr int kVersionMinor = 0;
constexpr char kAutoStart[] = "AutoStartEnabled";
constexpr char kAutoStop[] = "AutoStopEnabled";
constexpr char kSynchronize[] = "SynchronizeEnabled";
constexpr char kOammonLog[] = "OammonLog";

struct Setting {
    const char* keyword;
    const char* description;
    std::atomic<bool>* current;
    bool staged;  // carries a change from validation to handling; guarded by the manager lock
};

Setting s_bAutoStartEnabled = {kAutoStart, "enables automatic start of boards",
                               &g_bAutoStartEnabled, false};
Setting s_bAutoStopEnabled = {kAutoStop, "enables automatic stop of boards", &g_bAutoStopEnabled,
                              false};
Setting s_bOammonLog = {kOammonLog, "enables logging of board trace", &g_bOammonLog, false};
Setting s_bSynchronizeEnabled = {kSynchronize, "enables synchronize start/stop operation",
                                 &g_bSynchronizeEnabled, false};

Setting* const kSettings[] = {&s_bAutoStartEnabled, &s_bAutoStopEnabled, &s_bOammonLog,
                              &s_bSynchronizeEnabled};

bool isSetting(const char* keyword) noexcept {
    for (const Setting* setting : kSettings) {
        if (EqualNoCase(setting->keyword, keyword)) return true;
    }
    return false;
}

bool isVersion(const char* keyword) noexcept { return oam::StartsWithNoCase(keyword, "Version"); }

const char* yesOrNo(bool on) noexcept { return on ? "Yes" : "No"; }

// False when the setting is not stored.
bool readSetting(CMOSuper* supervisor, const Setting& setting, bool* on) noexcept {
    char value[oam::kNameSize];
    if (supervisor->DbGetKeyword(setting.keyword, value, sizeof value) != OAM_SUCCESS) {
        return false;
    }
    *on = EqualNoCase(value, "Yes");
    return true;
}

oam_result writeKeyword(CMOSuper* supervisor, const char* keyword, const char* value,
                        const char* description, const char* type) noexcept {
    if (auto failed = supervisor->DbSetKeyword(keyword, value)) return failed;
    // The save that follows would lose the setting.
    if (!supervisor->HasValue(keyword)) return OAMERR_NOT_ENOUGH_MEMORY;
    if (auto failed = supervisor->DbSetQualifier(keyword, "Description", description)) {
        return failed;
    }
    return supervisor->DbSetQualifier(keyword, "Type", type);
}

oam_result writeSetting(CMOSuper* supervisor, const Setting& setting) noexcept {
    return writeKeyword(supervisor, setting.keyword, yesOrNo(*setting.current), setting.description,
                        "String");
}

oam_result writeVersion(CMOSuper* supervisor, const char* keyword, int number,
                        const char* description) noexcept {
    char value[12];
    snprintf(value, sizeof value, "%d", number);
    return writeKeyword(supervisor, keyword, value, description, "Integer");
}

void openTraceLog() noexcept {
    char path[oam::kPathSize];
    if (GetFullPath(false, "/oam/log/oammon.log", path, sizeof path) != OAM_SUCCESS) return;
    CreatePathDirs(path);
    (void)AlertLogFileBeg(path);
}

}  // namespace

CMOSuper::CMOSuper() noexcept : KOR_CMObject("Supervisor", "Super.xmo") {}

oam_result CMOSuper::InitKeywords() noexcept {
    for (Setting* setting : {&s_bAutoStartEnabled, &s_bAutoStopEnabled, &s_bSynchronizeEnabled}) {
        bool on = false;
        *setting->current = readSetting(this, *setting, &on) && on;
    }
    if (auto failed = writeSetting(this, s_bAutoStartEnabled)) return failed;
    if (auto failed = writeSetting(this, s_bAutoStopEnabled)) return failed;
    if (auto failed = writeVersion(this, "Version.Major", kVersionMajor, "version major number")) {
        return failed;
    }
    if (auto failed = writeVersion(this, "Version.Minor", kVersionMinor, "version minor number")) {
        return failed;
    }
    // Kept: trace logging is off after every start, whatever the data file says.
    g_bOammonLog = false;
    if (auto failed = writeSetting(this, s_bOammonLog)) return failed;
    return writeSetting(this, s_bSynchronizeEnabled);
}

oam_result CMOSuper::ValidateChanges() noexcept {
    for (Setting* setting : kSettings) {
        if (!readSetting(this, *setting, &setting->staged)) setting->staged = *setting->current;
    }
    return OAM_SUCCESS;
}

void CMOSuper::HandleChanges() noexcept {
    const bool traced = g_bOammonLog;
    for (Setting* setting : kSettings) *setting->current = setting->staged;
    ValidateChangesCleanup();
    if (g_bOammonLog == traced) return;
    if (g_bOammonLog) {
        openTraceLog();
    } else {
        (void)AlertLogFileEnd();
    }
}

oam_result CMOSuper::TrapSetKeyword(unsigned long, const char* name, const char* value) noexcept {
    if (EqualNoCase(name, "Name") || isVersion(name)) return OAMERR_ACCESS_DENIED;
    if (!isSetting(name)) return DbSetKeyword(name, value);
    const bool yes = EqualNoCase(value, "Yes");
    if (!yes && !EqualNoCase(value, "No")) return OAMERR_ACCESS_DENIED;
    return DbSetKeyword(name, yesOrNo(yes));
}

oam_result CMOSuper::TrapGetKeyword(unsigned long, const char* name, char* buffer,
                                    unsigned size) noexcept {
    const char* rest;
    if (const CKeywordTrap* trap = FindKeywordTrap(name, &rest)) {
        const oam_result result = trap->GetValue(rest, buffer, size);
        if (result != OAMERR_NOT_FOUND) return result;
    }
    return DbGetKeyword(name, buffer, size);
}

oam_result CMOSuper::TrapSetQualifier(unsigned long, const char* name, const char* qualifier,
                                      const char* value) noexcept {
    return DbSetQualifier(name, qualifier, value);
}

oam_result CMOSuper::TrapGetQualifier(unsigned long, const char* name, const char* qualifier,
                                      char* buffer, unsigned size) noexcept {
    if (EqualNoCase(qualifier, "ReadOnly") && (EqualNoCase(name, "Name") || isVersion(name))) {
        return CopyText("Yes", buffer, size);
    }
    if (isSetting(name)) {
        if (EqualNoCase(qualifier, "Choices.Count")) return CopyText("2", buffer, size);
        if (EqualNoCase(qualifier, "Choices[0]")) return CopyText("Yes", buffer, size);
        if (EqualNoCase(qualifier, "Choices[1]")) return CopyText("No", buffer, size);
    }
    if (EqualNoCase(name, "DetectedBoards")) {
        if (EqualNoCase(qualifier, "Type")) return CopyText("Array", buffer, size);
        // Kept: "Keywords" answers the same as its count.
        if (EqualNoCase(qualifier, "Keywords.Count") || EqualNoCase(qualifier, "Keywords")) {
            return CopyText("2", buffer, size);
        }
    }
    const char* rest;
    if (const CKeywordTrap* trap = FindKeywordTrap(name, &rest)) {
        const oam_result result = trap->GetQualifier(rest, qualifier, buffer, size);
        if (result != OAMERR_NOT_FOUND) return result;
    }
    return DbGetQualifier(name, qualifier, buffer, size);
}
