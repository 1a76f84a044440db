// Objects as clients use them, with their plug-ins in between.
#include "row.h"
#include "support/objects.h"

namespace oam::torture {

namespace {

const std::vector<unsigned> kReadFailures = {kNoMemory, OAMERR_FILE_READ_ERROR};
const std::vector<unsigned> kCommitFailures = {kNoMemory, OAMERR_FILE_WRITE_ERROR};

unsigned open(World& world, const char* object, unsigned mode) {
    const unsigned code = _oamOpenObject(kOpener, object, &world.handle, mode);
    if (code == OAM_SUCCESS) world.openObject = object;
    return code;
}

void close(World& world) {
    if (world.handle != 0) (void)_oamCloseObject(world.handle);
    world.handle = 0;
}

template <oam_result (*Close)(unsigned long) noexcept>
unsigned closeWorlds(World& world) {
    const unsigned code = Close(world.handle);
    world.handle = 0;
    return code;
}

void openBoard(World& world) { (void)open(world, kBoard, OAM_OPEN_WRITE); }

void openSupervisor(World& world) { (void)open(world, "Supervisor", OAM_OPEN_WRITE); }

void changeGain(World& world) {
    openBoard(world);
    (void)_oamSetKeyword(world.handle, "Gain", "9");
}

void resetGain(World& world) {
    close(world);
    (void)test::Change(kBoard, "Gain", "3");
}

void rename(World& world) {
    openBoard(world);
    (void)_oamSetKeyword(world.handle, "Name", "Another");
}

void resetName(World&) {
    unsigned long handle = 0;
    if (_oamOpenObject(kOpener, "Another", &handle, OAM_OPEN_WRITE) != OAM_SUCCESS) return;
    (void)_oamSetKeyword(handle, "Name", kBoard);
    (void)_oamCloseObject(handle);
}

void changeSetting(World& world) {
    openSupervisor(world);
    (void)_oamSetKeyword(world.handle, "AutoStopEnabled", "Yes");
}

void resetSetting(World& world) {
    close(world);
    (void)test::Change("Supervisor", "AutoStopEnabled", "No");
}

unsigned getKeyword(World& world, const char* keyword) {
    return _oamGetKeyword(world.handle, keyword, world.text, sizeof world.text);
}

unsigned getQualifier(World& world, const char* keyword, const char* qualifier) {
    return _oamGetQualifier(world.handle, keyword, qualifier, world.text, sizeof world.text);
}

}  // namespace

std::vector<Row> ObjectRows() {
    return {
        {.name = "_oamOpenObject",
         .what = "board to read",
         .call = [](World& world) { return open(world, kBoard, OAM_OPEN_READ); },
         .failures = kReadFailures,
         .undo = &close,
         .isVital = true},
        {.name = "_oamOpenObject",
         .what = "board to write",
         .call = [](World& world) { return open(world, kBoard, OAM_OPEN_WRITE); },
         .failures = kReadFailures,
         .undo = &close},
        {.name = "_oamOpenObject",
         .what = "plug-in",
         .call = [](World& world) { return open(world, kPlugin, OAM_OPEN_READ); },
         .failures = kReadFailures,
         .undo = &close},
        {.name = "_oamOpenObject",
         .what = "component",
         .call = [](World& world) { return open(world, kComponent, OAM_OPEN_READ); },
         .failures = kReadFailures,
         .undo = &close},
        {.name = "_oamCloseObject",
         .what = "changed board",
         .call = &closeWorlds<_oamCloseObject>,
         .failures = kCommitFailures,
         .prepare = &changeGain,
         .undo = &resetGain,
         .accepts = &LeavesItClosed,
         .isVital = true},
        {.name = "_oamCloseObject",
         .what = "renamed board",
         .call = &closeWorlds<_oamCloseObject>,
         .failures = kCommitFailures,
         .prepare = &rename,
         .undo = &resetName,
         .accepts = &LeavesItClosed},
        {.name = "_oamCloseObject",
         .what = "changed setting",
         .call = &closeWorlds<_oamCloseObject>,
         .failures = kCommitFailures,
         .prepare = &changeSetting,
         .undo = &resetSetting,
         .accepts = &LeavesItClosed},
        {.name = "_oamCloseObject",
         .what = "to read",
         .call = &closeWorlds<_oamCloseObject>,
         .prepare = [](World& world) { (void)open(world, kBoard, OAM_OPEN_READ); }},
        {.name = "_oamCloseObject_WOAN",
         .what = "changed board",
         .call = &closeWorlds<_oamCloseObject_WOAN>,
         .failures = kCommitFailures,
         .prepare = &changeGain,
         .undo = &resetGain,
         .accepts = &LeavesItClosed},
        {.name = "_oamSetKeyword",
         .what = "board's",
         .call = [](World& world) { return unsigned{_oamSetKeyword(world.handle, "Gain", "9")}; },
         .prepare = &openBoard,
         .undo =
             [](World& world) {
                 (void)_oamSetKeyword(world.handle, "Gain", "3");
                 close(world);
             },
         .accepts = [](World&, const Outcome& outcome) { return EmptiesValue(outcome, "Gain=9"); },
         .isVital = true},
        {.name = "_oamSetKeyword",
         .what = "new",
         .call =
             [](World& world) { return unsigned{_oamSetKeyword(world.handle, "New", "value")}; },
         .failures = {kNoMemory},
         .prepare = [](World& world) { OpenInWorld(world, kBoard, test::kProvider); },
         .undo = &DiscardInWorld,
         .accepts = [](World&,
                       const Outcome& outcome) { return EmptiesValue(outcome, "New=value"); }},
        {.name = "_oamSetKeyword",
         .what = "setting",
         .call =
             [](World& world) {
                 return unsigned{_oamSetKeyword(world.handle, "AutoStopEnabled", "Yes")};
             },
         .prepare = &openSupervisor,
         .undo =
             [](World& world) {
                 (void)_oamSetKeyword(world.handle, "AutoStopEnabled", "No");
                 close(world);
             },
         .accepts =
             [](World&, const Outcome& outcome) {
                 return EmptiesValue(outcome, "AutoStopEnabled=Yes");
             }},
        {.name = "_oamGetKeyword",
         .what = "board's",
         .call = [](World& world) { return getKeyword(world, "Gain"); },
         .prepare = &openBoard,
         .undo = &close,
         .isVital = true},
        {.name = "_oamGetKeyword",
         .what = "computed",
         .call =
             [](World& world) { return getKeyword(world, "DetectedBoards[0].Location.PCI.Slot"); },
         .failures = {kNoMemory},
         .prepare = &openSupervisor,
         .undo = &close},
        {.name = "_oamGetQualifier",
         .what = "board's",
         .call = [](World& world) { return getQualifier(world, "Name", "Type"); },
         .failures = {kNoMemory},
         .prepare = &openBoard,
         .undo = &close,
         .isVital = true},
        {.name = "_oamGetQualifier",
         .what = "computed",
         .call =
             [](World& world) {
                 return getQualifier(world, "DetectedBoards[0].Location", "Keywords[0]");
             },
         .failures = {kNoMemory},
         .prepare = &openSupervisor,
         .undo = &close},
    };
}

}  // namespace oam::torture
