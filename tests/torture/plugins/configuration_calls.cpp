// The configuration as a whole, and the making and deleting of boards.
#include "inside_call.h"

namespace oam::torture {

namespace {

const std::vector<unsigned> kCreation = {kNotRunning, kNotFound,   kDenied,    kExists,
                                         kNoMemory,   kUnreadable, kUnwritable};

}  // namespace

std::vector<InsideCall> ConfigurationCalls() {
    return {
        {"_oamConfigExport",
         "",
         [](Inside& inside) {
             return unsigned{_oamConfigExport(inside.world.Path("inside.oam").c_str())};
         },
         {kNotRunning, kDenied, kNoMemory, kUnreadable, kUnwritable}},
        {"_oamConfigImport",
         "",
         [](Inside& inside) {
             return unsigned{_oamConfigImport(inside.world.Path(kImport).c_str())};
         },
         {kNotRunning, kDenied, kNotFound, kExists, kNoMemory, kUnreadable, kUnwritable}},
        {"_oamConfigImport",
         "of no file",
         [](Inside&) { return unsigned{_oamConfigImport("/there is no such file")}; },
         {kNotRunning, kDenied, kNotFound}},
        {"_oamCreateBoard", "",
         [](Inside&) {
             char name[128];
             return unsigned{_oamCreateBoard(kProduct, name, sizeof name)};
         },
         kCreation},
        {"_oamDeleteBoard",
         "its own",
         [](Inside&) { return unsigned{_oamDeleteBoard(kBoard)}; },
         {kNotRunning, kNotFound, kDenied, kNoMemory}},
        {"_oamDeleteBoard",
         "every one",
         [](Inside&) { return unsigned{_oamDeleteBoard(nullptr)}; },
         {kNotRunning, kNotFound, kDenied, kNoMemory}},
        {"_oamAddDetectedBoard", "one",
         [](Inside&) { return unsigned{_oamAddDetectedBoard("Found A")}; }, kCreation},
        {"_oamAddDetectedBoard", "every one",
         [](Inside&) { return unsigned{_oamAddDetectedBoard(nullptr)}; }, kCreation},
    };
}

}  // namespace oam::torture
