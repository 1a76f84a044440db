// The configuration as a whole: export and import, and the making and deleting of boards.
#include "digest.h"
#include "row.h"
#include "support/data_file.h"

namespace oam::torture {

namespace {

constexpr const char* kExport = "out/all.oam";
constexpr const char* kImport = "out/new.oam";

const std::vector<unsigned> kCreationFailures = {kNoMemory, OAMERR_FILE_WRITE_ERROR,
                                                 OAMERR_FILE_READ_ERROR};

// Kept: a name that cannot be looked up counts as taken.
const std::vector<unsigned> kAdditionFailures = {kNoMemory, OAMERR_FILE_WRITE_ERROR,
                                                 OAMERR_FILE_READ_ERROR, OAMERR_ALREADY_EXISTS};

void startAnew(World& world) { world.StartAnew(); }

unsigned exportAll(World& world) { return _oamConfigExport(world.Path(kExport).c_str()); }

// As large as what it replaces.
void writeImport(World& world) {
    std::vector<test::ObjectEntries> objects;
    for (int i = 0; i < world.Count(); ++i) {
        const std::string name = "New " + std::to_string(i);
        test::Entries entries = test::StandardEntries(name, kProduct);
        entries.emplace_back("Number", std::to_string(100 + i));
        objects.push_back({name, entries});
    }
    world.home.Write(kImport, test::ExportFile(objects));
}

void removeImport(World& world) {
    world.StartAnew();
    world.home.Remove(kImport);
}

// Either nothing was touched, or every old data file lies aside as it was. When the import counts,
// what is left of the old files to be removed waits for the next start.
bool keepsOldFiles(World& world, const Outcome& outcome) {
    if (outcome.code == OAM_SUCCESS) {
        world.home.Remove("oam/cfg/import-aside.old");
        // Kept: what describes the Supervisor's settings may be empty.
        return Digest(world) == outcome.after || EmptiesValues(outcome, "?");
    }
    if (outcome.found == outcome.before) return true;
    return world.HasDataFiles("oam/cfg/import-refused");
}

unsigned createBoard(World&) {
    char name[128];
    return _oamCreateBoard(kProduct, name, sizeof name);
}

// It has the first number that was free.
void deleteCreated(World& world) {
    (void)_oamDeleteBoard((std::string(kProduct) + ' ' + std::to_string(world.Count())).c_str());
}

template <bool kAll>
unsigned deleteBoard(World&) {
    return _oamDeleteBoard(kAll ? nullptr : kBoard);
}

// Kept: a table that cannot shrink keeps the object after the plug-in has given the board up; asked
// again, the deletion is completed.
template <bool kAll>
bool deleteAgain(World& world) {
    return deleteBoard<kAll>(world) == OAM_SUCCESS;
}

unsigned addDetected(World&) { return _oamAddDetectedBoard("Found 100"); }

// Where the board is, as a query answers; an empty bus reads as 0.
bool emptiesPlace(const Outcome& outcome) {
    const std::string place = " 0:7,100 ";
    const std::string withoutBus = " 0:0,100 ";
    if (outcome.found.find(withoutBus) == std::string::npos) return false;
    std::string after = outcome.after;
    for (std::size_t at; (at = after.find(place)) != std::string::npos;)
        after.replace(at, place.size(), withoutBus);
    return EmptiesValues({outcome.code, outcome.found, outcome.before, after, outcome.standing},
                         "");
}

// A board that was created but could not be filled in stays, under the name of its creation. Kept:
// a place that could not be copied is empty, and that is no failure.
bool leavesCreatedBoard(World&, const Outcome& outcome) {
    if (EmptiesValues(outcome, "") || emptiesPlace(outcome)) return true;
    return outcome.code != OAM_SUCCESS && AddsOnly(outcome.before, outcome.found, "Boards: ");
}

}  // namespace

std::vector<Row> ConfigurationRows() {
    return {
        {.name = "_oamConfigExport",
         .what = "",
         .call = &exportAll,
         .failures = {kNoMemory, OAMERR_FILE_WRITE_ERROR, OAMERR_FILE_READ_ERROR},
         .undo = [](World& world) { world.home.Remove(kExport); },
         .isVital = true},
        {.name = "_oamConfigExport",
         .what = "over an older one",
         .call = &exportAll,
         .failures = {kNoMemory, OAMERR_FILE_WRITE_ERROR, OAMERR_FILE_READ_ERROR},
         .prepare = [](World& world) { world.home.Write(kExport, "<an older export>"); },
         .undo = [](World& world) { world.home.Remove(kExport); }},
        {.name = "_oamConfigImport",
         .what = "",
         .call =
             [](World& world) { return unsigned{_oamConfigImport(world.Path(kImport).c_str())}; },
         .failures = {kNoMemory, OAMERR_NOT_FOUND, OAMERR_FILE_READ_ERROR, OAMERR_FILE_WRITE_ERROR},
         .prepare = &writeImport,
         .undo = &removeImport,
         .accepts = &keepsOldFiles,
         .isVital = true},
        {.name = "_oamCreateBoard",
         .what = "",
         .call = &createBoard,
         .failures = kCreationFailures,
         .undo = &deleteCreated,
         // Kept: a value of the plug-in that cannot be copied is empty.
         .accepts = [](World&, const Outcome& outcome) { return EmptiesValues(outcome, ""); },
         .isVital = true,
         .isIntricate = true},
        {.name = "_oamDeleteBoard",
         .what = "one",
         .call = &deleteBoard<false>,
         .failures = {kNoMemory},
         .undo = &startAnew,
         .mend = &deleteAgain<false>,
         .isVital = true},
        {.name = "_oamDeleteBoard",
         .what = "all",
         .call = &deleteBoard<true>,
         .failures = {kNoMemory},
         .undo = &startAnew,
         .mend = &deleteAgain<true>},
        {.name = "_oamAddDetectedBoard",
         .what = "",
         .call = &addDetected,
         .failures = kAdditionFailures,
         .undo = &startAnew,
         .accepts = &leavesCreatedBoard,
         .isVital = true},
    };
}

}  // namespace oam::torture
