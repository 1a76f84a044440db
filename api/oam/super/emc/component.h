// A loaded component and the table of all of them.
#pragma once

#include "loading/module.h"

struct ComponentEntries : oam::ObjectEntries {
    const oam::ObjectEntries& Object() const noexcept { return *this; }
    bool IsBound() const noexcept { return exit != nullptr && getQualifier != nullptr; }
    void SetModule(unsigned number) noexcept { mark.module = number; }
};

using CEmc = oam::Module<ComponentEntries>;
using CArrayPtrsToEmc = oam::ModuleTable<ComponentEntries>;

// The one table of the service.
CArrayPtrsToEmc& components() noexcept;

// Load every "*.emc" of "/lib"; end them all, answering the last failure.
oam_result emcsInit() noexcept;
oam_result emcsExit() noexcept;
