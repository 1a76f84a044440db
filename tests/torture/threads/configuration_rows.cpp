// The configuration as a whole, and the making and deleting of boards.
#include "caller.h"
#include "oam/entry.h"
#include "words.h"

namespace oam::torture {

namespace {

void exportAll(Caller& caller) {
    const bool canBe = !caller.Chance().OneIn(8);
    const std::string file = canBe ? caller.ExportFile() : "/there/is no/such directory";
    caller.Call("_oamConfigExport",
                {OAM_SUCCESS, OAMERR_ACCESS_DENIED,
                 canBe ? OAM_SUCCESS : unsigned{OAMERR_FILE_WRITE_ERROR}},
                [&] { return unsigned{_oamConfigExport(file.c_str())}; });
}

// What there was at the beginning, mostly, so that boards do not run out.
std::string anyExport(Caller& caller) {
    return caller.Chance().OneIn(3) ? caller.ExportFile()
                                    : caller.TheStorm().Site().home.Path("out/first.oam");
}

// A caller's own export may not be there yet, or be another's that is written now.
void importAll(Caller& caller) {
    const bool isSpoiled = caller.Chance().OneIn(10);
    const std::string file =
        isSpoiled ? caller.TheStorm().Site().home.Path("out/spoiled.oam") : anyExport(caller);
    Storm& storm = caller.TheStorm();
    const bool isQuiet = !caller.IsInReceiver() && storm.BeginQuiet();
    if (isQuiet) caller.CloseAll();
    caller.Call("_oamConfigImport",
                {OAM_SUCCESS, OAMERR_ACCESS_DENIED, OAMERR_NOT_FOUND,
                 isSpoiled ? unsigned{OAMERR_FILE_READ_ERROR} : OAM_SUCCESS},
                [&] { return unsigned{_oamConfigImport(file.c_str())}; });
    if (isQuiet) storm.EndQuiet();
}

// Of what is no board there is no product: a plug-in that an import has ended.
void create(Caller& caller) {
    const std::string product = AnyProduct(caller.Chance());
    char name[128];
    const unsigned size = AnySize(caller.Chance());
    caller.Call("_oamCreateBoard", {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_NOT_ENOUGH_MEMORY},
                [&] { return unsigned{_oamCreateBoard(product.c_str(), name, size)}; });
}

void remove(Caller& caller) {
    const std::string board = caller.Board();
    if (!IsBoard(board)) return;  // what a receiver heard of: the others are to stay
    const bool isAll = caller.Chance().OneIn(30);
    caller.Call("_oamDeleteBoard", {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_ACCESS_DENIED},
                [&] { return unsigned{_oamDeleteBoard(isAll ? nullptr : board.c_str())}; });
}

void addDetected(Caller& caller) {
    const std::string board = SimSite::BoardName(static_cast<int>(caller.Chance().Below(7)));
    const bool isAll = caller.Chance().OneIn(4);
    caller.Call("_oamAddDetectedBoard", {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_ALREADY_EXISTS},
                [&] { return unsigned{_oamAddDetectedBoard(isAll ? nullptr : board.c_str())}; });
}

}  // namespace

std::vector<Row> ConfigurationRows() {
    return {{"_oamConfigExport", 2, &exportAll},
            {"_oamConfigImport", 1, &importAll},
            {"_oamCreateBoard", 3, &create},
            {"_oamDeleteBoard", 3, &remove},
            {"_oamAddDetectedBoard", 4, &addDetected}};
}

}  // namespace oam::torture
