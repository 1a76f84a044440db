#include "component.h"

#include <iterator>

#include "base/forever.h"
#include "loading/loader.h"

namespace {

#define COMPONENT_ENTRY(symbol, field) \
    { symbol, offsetof(ComponentEntries, field), nullptr }

// All nine are required.
constexpr oam::EntryRow kEntries[] = {
    COMPONENT_ENTRY("Init", init),
    COMPONENT_ENTRY("Exit", exit),
    COMPONENT_ENTRY("GetText", getText),
    COMPONENT_ENTRY("AlertReceive", alertReceive),
    COMPONENT_ENTRY("OpenObject", openObject),
    COMPONENT_ENTRY("CloseObject", closeObject),
    COMPONENT_ENTRY("SetKeyword", setKeyword),
    COMPONENT_ENTRY("GetKeyword", getKeyword),
    COMPONENT_ENTRY("GetQualifier", getQualifier),
};

constexpr oam::LoaderTexts kTexts = {
    ".emc",
    "\nListing of EMC files found:\n",
    "Directory for EMC files \"%s\" not found.\n",
    "No EMC files found.\n",
    "Emc",
    true,
    false,
};

auto loader() noexcept { return oam::TableLoader(kTexts, components(), kEntries); }

}  // namespace

CArrayPtrsToEmc& components() noexcept {
    static oam::Forever<CArrayPtrsToEmc> table;
    return table.Get();
}

oam_result emcsInit() noexcept { return loader().LoadAll(); }

oam_result emcsExit() noexcept { return loader().ExitAll(); }
