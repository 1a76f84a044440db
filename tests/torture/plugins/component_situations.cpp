// The nine entries of a component, each in every way that it is called.
#include "oam/entry.h"
#include "situation.h"
#include "support/objects.h"

namespace oam::torture {

namespace {

void openToRead(World& world) { OpenFor(world, kComponent, test::kRead); }
void openToWrite(World& world) { OpenFor(world, kComponent, test::kWrite); }

unsigned openIt(World& world) {
    const unsigned code = _oamOpenObject(test::kClient, kComponent, &world.handle, test::kRead);
    if (code == OAM_SUCCESS) (void)_oamCloseObject(world.handle);
    return code;
}

unsigned closeIt(World& world) { return _oamCloseObject(world.handle); }

unsigned set(World& world) {
    const unsigned code = _oamSetKeyword(world.handle, "Name", kComponent);
    (void)_oamCloseObject(world.handle);
    return code;
}

unsigned get(World& world) {
    char text[128];
    const unsigned code = _oamGetKeyword(world.handle, "Name", text, sizeof text);
    (void)_oamCloseObject(world.handle);
    return code;
}

unsigned getQualifier(World& world) {
    char text[128];
    const unsigned code = _oamGetQualifier(world.handle, "Name", "Type", text, sizeof text);
    (void)_oamCloseObject(world.handle);
    return code;
}

const std::vector<std::string> kHostile = {kComponent};

}  // namespace

std::vector<Situation> ComponentSituations() {
    return {
        {"ComponentInit", "Init", kHostile, &StartService, Fate::kAnswered, Phase::kStarting},
        {"ComponentExit", "Exit", kHostile, &StopService, Fate::kIgnored, Phase::kStopping},
        {"ComponentGetText", "GetText", kHostile, &AskText, Fate::kNoCode},
        {"ComponentAlertReceive", "AlertReceive", kHostile, &RaiseAlert},
        {"ComponentAlertReceiveAtStart", "AlertReceive", kHostile, &StartService, Fate::kIgnored,
         Phase::kStarting},
        {"ComponentAlertReceiveInACommit", "AlertReceive", kHostile, &RenameBoard, Fate::kIgnored,
         Phase::kRunning, true},
        {"ComponentAlertReceiveInImport", "AlertReceive", kHostile, &ImportAll, Fate::kIgnored,
         Phase::kImporting, true},
        {"ComponentAlertReceiveAtStop", "AlertReceive", kHostile, &StopService, Fate::kIgnored,
         Phase::kStopping, true},
        {"ComponentOpenObject", "OpenObject", kHostile, &openIt, Fate::kAnswered, Phase::kRunning,
         true, true},
        {"ComponentCloseObject", "CloseObject", kHostile, &closeIt, Fate::kAnswered,
         Phase::kRunning, true, true, &openToWrite},
        {"ComponentSetKeyword", "SetKeyword", kHostile, &set, Fate::kAnswered, Phase::kRunning,
         true, true, &openToWrite},
        {"ComponentGetKeyword", "GetKeyword", kHostile, &get, Fate::kAnswered, Phase::kRunning,
         true, true, &openToRead},
        {"ComponentGetQualifier", "GetQualifier", kHostile, &getQualifier, Fate::kNotFoundIsGood,
         Phase::kRunning, true, true, &openToRead},
        // The storm: all four answer.
        {"EveryAlertReceive",
         "AlertReceive",
         {kPlugin, kGoodPlugin, kComponent, kGoodComponent},
         &RaiseAlert},
    };
}

}  // namespace oam::torture
