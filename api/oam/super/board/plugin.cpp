#include "plugin.h"

#include <iterator>

#include "base/forever.h"
#include "doors/board.h"
#include "loading/loader.h"

namespace {

const char* defaultGetText(unsigned) { return nullptr; }
unsigned defaultAlertReceive(const oam_msg_tag*) { return OAM_SUCCESS; }
unsigned defaultGetBoardStatus(const char*, unsigned, int*) { return OAMERR_NOT_SUPPORTED_WARNING; }

template <class Function>
auto fallback(Function* function) noexcept {
    return reinterpret_cast<void (*)()>(function);
}

#define PLUGIN_ENTRY(symbol, field) symbol, offsetof(PluginEntries, field)

// In the order of the lookups: the first one missing decides the code.
const oam::EntryRow kEntries[] = {
    {PLUGIN_ENTRY("Init", object.init), nullptr},
    {PLUGIN_ENTRY("Exit", object.exit), nullptr},
    {PLUGIN_ENTRY("GetText", object.getText), fallback(&defaultGetText)},
    {PLUGIN_ENTRY("AlertReceive", object.alertReceive), fallback(&defaultAlertReceive)},
    {PLUGIN_ENTRY("DetectBoards", detectBoards), nullptr},
    {PLUGIN_ENTRY("CreateBoard", createBoard), nullptr},
    {PLUGIN_ENTRY("DestroyBoard", destroyBoard), nullptr},
    {PLUGIN_ENTRY("OpenObject", object.openObject), nullptr},
    {PLUGIN_ENTRY("CloseObject", object.closeObject), nullptr},
    {PLUGIN_ENTRY("SetKeyword", object.setKeyword), nullptr},
    {PLUGIN_ENTRY("GetKeyword", object.getKeyword), nullptr},
    {PLUGIN_ENTRY("GetQualifier", object.getQualifier), nullptr},
    {PLUGIN_ENTRY("StartBoard", startBoard), nullptr},
    {PLUGIN_ENTRY("StopBoard", stopBoard), nullptr},
    {PLUGIN_ENTRY("TestBoard", testBoard), nullptr},
    {PLUGIN_ENTRY("SendBuffer", sendBuffer), nullptr},
    {PLUGIN_ENTRY("GetBoardStatus", getBoardStatus), fallback(&defaultGetBoardStatus)},
};
static_assert(std::size(kEntries) * sizeof(void*) + sizeof(oam::ModuleMark) ==
              sizeof(PluginEntries));

constexpr oam::LoaderTexts kTexts = {
    ".bpi",
    "\nListing of board plug-in files found:\n",
    "Directory for board plug-in files \"%s\" not found.\n",
    "No board plug-in files found.\n",
    "Plug-in",
    false,
    true,
};

auto loader() noexcept { return oam::TableLoader(kTexts, plugins(), kEntries); }

}  // namespace

CArrayPtrsToPlugin& plugins() noexcept {
    static oam::Forever<CArrayPtrsToPlugin> table;
    return table.Get();
}

oam_result pluginsInit() noexcept { return loader().LoadAll(); }

oam_result pluginsExit() noexcept { return loader().ExitAll(); }

int PluginsGetCount() noexcept { return plugins().Count(); }

const char* PluginsGetAt(int index) noexcept { return plugins().NameAt(index); }
