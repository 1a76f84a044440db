// Start and stop of the service, its clients, and the names of codes.
#include <gtest/gtest.h>

#include "held_threads.h"
#include "row.h"
#include "support/objects.h"

namespace oam::torture {

namespace {

constexpr unsigned kLibraryNotLoaded = 0xf0027;

const std::vector<unsigned> kStartFailures = {kNoMemory, OAMERR_FILE_READ_ERROR,
                                              OAMERR_FILE_WRITE_ERROR, kLibraryNotLoaded};

void stop(World&) { (void)_oamExit(); }

void startAnew(World& world) { world.StartAnew(); }

// A start that failed has touched no data file, and is made good by the next one.
bool startAgain(World& world) {
    const bool areThere = world.HasDataFiles("oam/cfg");
    EXPECT_TRUE(areThere) << "a data file is lost or changed";
    const HeldThreads hold;
    return _oamInit() == OAM_SUCCESS && areThere;
}

// Kept: a value that cannot be copied is empty; what describes a setting may be lost so, but not
// the setting.
bool emptiesDescriptions(World&, const Outcome& outcome) { return EmptiesValues(outcome, "?"); }

void leaveChangeOpen(World& world) {
    world.handle = test::Open(kBoard, test::kWrite, kOpener);
    world.openObject = kBoard;
    (void)_oamSetKeyword(world.handle, "Gain", "9");
}

unsigned clientExit(World& world, unsigned long client) {
    const unsigned code = _oamClientExit(client);
    world.handle = 0;
    return code;
}

}  // namespace

std::vector<Row> LifecycleRows() {
    return {
        {"_oamHello", "",
         [](World&) {
             _oamHello("hello");
             return 0u;
         }},
        {"DebugOutput", "",
         [](World&) {
             DebugOutput("%s", "text");
             return 0u;
         }},
        {.name = "_oamInit",
         .what = "",
         .call = [](World&) { return unsigned{_oamInit()}; },
         .failures = kStartFailures,
         .prepare = &stop,
         .undo = &startAnew,
         .mend = &startAgain,
         .accepts = &emptiesDescriptions,
         .isVital = true},
        {"_oamInit", "running already", [](World&) { return unsigned{_oamInit()}; }},
        {.name = "_oamExit",
         .what = "",
         .call = [](World&) { return unsigned{_oamExit()}; },
         .undo = &startAnew,
         .isVital = true},
        {.name = "_oamRestart",
         .what = "",
         .call = [](World&) { return unsigned{_oamRestart()}; },
         .failures = kStartFailures,
         .undo = &startAnew,
         .mend = &startAgain,
         .accepts = &emptiesDescriptions},
        {.name = "_oamShutdown",
         .what = "",
         .call = [](World&) { return unsigned{_oamShutdown()}; },
         .undo = &startAnew},
        {"_oamClientInit", "", [](World&) { return unsigned{_oamClientInit(kOpener)}; }},
        {.name = "_oamClientExit",
         .what = "registered",
         .call = [](World& world) { return clientExit(world, world.LastClient()); },
         .undo = [](World& world) { (void)_oamAlertRegister(world.LastClient()); },
         // A removal that fails for want of memory is not told, as one for a client that never
         // registered.
         .accepts = [](World&, const Outcome& outcome) { return outcome.found == outcome.before; },
         .isVital = true},
        {.name = "_oamClientExit",
         .what = "with a change open",
         .call = [](World& world) { return clientExit(world, kOpener); },
         .prepare = &leaveChangeOpen,
         .undo = [](World&) { (void)test::Change(kBoard, "Gain", "3"); },
         // A change that could not be committed is dropped, and that is not told.
         .accepts = [](World&,
                       const Outcome& outcome) { return outcome.found == outcome.standing; }},
        {"_oamGetText", "",
         [](World&) { return _oamGetText(OAMERR_NOT_FOUND) != nullptr ? 0u : 1u; }},
        {"_oamGetText", "unknown", [](World&) { return _oamGetText(1) == nullptr ? 0u : 1u; }},
    };
}

}  // namespace oam::torture
