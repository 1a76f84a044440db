// The nine entries that board plug-ins and components have in common: they serve an object, receive
// alerts and name codes.
//
// A small record of pointers, copied by those who call, so that a table of modules may change while
// a call runs: libraries are never unloaded, so the copy stays good.
#pragma once

#include "loading/entry_names.h"
#include "oam/component.h"

namespace oam {

struct ObjectEntries {
    oam_component_init* init = nullptr;
    oam_component_exit* exit = nullptr;
    oam_component_get_text* getText = nullptr;
    oam_component_alert_receive* alertReceive = nullptr;
    oam_component_open_object* openObject = nullptr;
    oam_component_close_object* closeObject = nullptr;
    oam_component_set_keyword* setKeyword = nullptr;
    oam_component_get_keyword* getKeyword = nullptr;
    oam_component_get_qualifier* getQualifier = nullptr;
    ModuleMark mark{};

    // Each calls its entry, which must be bound; an exception is OAM_REASON_FAILED.
    oam_result Init(const char* fileName) const noexcept;
    // 0 when the entry is not bound: a module that could not be loaded has nothing to end.
    oam_result Exit() const noexcept;
    const char* GetText(unsigned code) const noexcept;
    oam_result AlertReceive(const oam_msg_tag* message) const noexcept;
    oam_result OpenObject(unsigned long handle, unsigned mode) const noexcept;
    oam_result CloseObject(unsigned long handle) const noexcept;
    oam_result SetKeyword(unsigned long handle, const char* keyword,
                          const char* value) const noexcept;
    oam_result GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                          unsigned size) const noexcept;
    oam_result GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                            char* buffer, unsigned size) const noexcept;
};

}  // namespace oam
