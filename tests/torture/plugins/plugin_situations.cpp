// The seventeen entries of a board plug-in, each in every way that it is called.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "oam/entry.h"
#include "situation.h"
#include "support/objects.h"

namespace oam::torture {

namespace {

unsigned createBoard(World&) {
    char name[128];
    return _oamCreateBoard(kProduct, name, sizeof name);
}

unsigned deleteBoard(World&) { return _oamDeleteBoard(kBoard); }

void openToRead(World& world) { OpenFor(world, kBoard, test::kRead); }
void openToWrite(World& world) { OpenFor(world, kBoard, test::kWrite); }

unsigned openIt(World& world) {
    const unsigned code = _oamOpenObject(test::kClient, kBoard, &world.handle, test::kWrite);
    if (code == OAM_SUCCESS) (void)_oamCloseObject(world.handle);
    return code;
}

unsigned closeIt(World& world) { return _oamCloseObject(world.handle); }

template <unsigned (*Use)(unsigned long handle)>
unsigned useAndClose(World& world) {
    const unsigned code = Use(world.handle);
    (void)_oamCloseObject(world.handle);
    return code;
}

unsigned set(unsigned long handle) { return _oamSetKeyword(handle, "Gain", "5"); }

unsigned get(unsigned long handle) {
    char text[128];
    return _oamGetKeyword(handle, "Gain", text, sizeof text);
}

unsigned getQualifier(unsigned long handle) {
    char text[128];
    return _oamGetQualifier(handle, "Gain", "Type", text, sizeof text);
}

unsigned detect(World&) { return _oamDetectBoards(); }

const std::vector<std::string> kHostile = {kPlugin};

std::vector<Situation> lifeSituations() {
    return {
        {"InitAtStart", "Init", kHostile, &StartService, Fate::kAnswered, Phase::kStarting},
        {"InitInImport", "Init", kHostile, &ImportAll, Fate::kAnswered, Phase::kImporting, true},
        {"ExitAtStop", "Exit", kHostile, &StopService, Fate::kIgnored, Phase::kStopping},
        {"ExitInImport", "Exit", kHostile, &ImportAll, Fate::kIgnored, Phase::kImporting, true},
        {"GetText", "GetText", kHostile, &AskText, Fate::kNoCode},
        {"GetTextOfATracedAlert", "GetText", kHostile,
         [](World&) { return unsigned{test::Raise(0x51000001, 0, kBoard, "its own code")}; },
         Fate::kNoCode, Phase::kRunning, false, false, &SwitchTraceOn},
        {"AlertReceive", "AlertReceive", kHostile, &RaiseAlert},
        {"AlertReceiveAtStart", "AlertReceive", kHostile, &StartService, Fate::kIgnored,
         Phase::kStarting},
        {"AlertReceiveInACommit", "AlertReceive", kHostile, &RenameBoard, Fate::kIgnored,
         Phase::kRunning, true},
        {"AlertReceiveInACreation", "AlertReceive", kHostile, &createBoard, Fate::kIgnored},
        {"AlertReceiveInADeletion", "AlertReceive", kHostile, &deleteBoard, Fate::kIgnored,
         Phase::kRunning, true},
        {"AlertReceiveAtStop", "AlertReceive", kHostile, &StopService, Fate::kIgnored,
         Phase::kStopping, true},
        {"AlertReceiveOfEveryStart", "AlertReceive", kHostile,
         [](World&) { return unsigned{_oamStartBoard(nullptr, OAM_SYNCHRONIZED)}; }, Fate::kIgnored,
         Phase::kRunning, true},
        {"AlertReceiveOfEveryDeletion", "AlertReceive", kHostile,
         [](World&) { return unsigned{_oamDeleteBoard(nullptr)}; }, Fate::kIgnored, Phase::kRunning,
         true},
    };
}

std::vector<Situation> objectSituations() {
    return {
        {"DetectBoards", "DetectBoards", kHostile, &detect, Fate::kIgnored},
        {"CreateBoard", "CreateBoard", kHostile, &createBoard, Fate::kAnswered, Phase::kRunning,
         true},
        {"DestroyBoard", "DestroyBoard", kHostile, &deleteBoard, Fate::kNotFoundIsGood,
         Phase::kRunning, true},
        {"OpenObject", "OpenObject", kHostile, &openIt, Fate::kAnswered, Phase::kRunning, true,
         true},
        {"OpenObjectAtStart", "OpenObject", kHostile, &StartService, Fate::kAnswered,
         Phase::kStarting, true, true},
        {"OpenObjectInADetection", "OpenObject", kHostile, &detect, Fate::kAnswered,
         Phase::kRunning, true, true},
        {"OpenObjectInACreation", "OpenObject", kHostile, &createBoard, Fate::kAnswered,
         Phase::kRunning, true, true},
        {"CloseObject", "CloseObject", kHostile, &closeIt, Fate::kAnswered, Phase::kRunning, true,
         true, &openToWrite},
        {"CloseObjectAtStart", "CloseObject", kHostile, &StartService, Fate::kAnswered,
         Phase::kStarting, true, true},
        {"CloseObjectOfADepartedClient", "CloseObject", kHostile,
         [](World&) { return unsigned{_oamClientExit(test::kClient)}; }, Fate::kIgnored,
         Phase::kRunning, true, true, &openToWrite},
        {"SetKeyword", "SetKeyword", kHostile, &useAndClose<set>, Fate::kAnswered, Phase::kRunning,
         true, true, &openToWrite},
        {"GetKeyword", "GetKeyword", kHostile, &useAndClose<get>, Fate::kAnswered, Phase::kRunning,
         true, true, &openToRead},
        {"GetKeywordAtStart", "GetKeyword", kHostile, &StartService, Fate::kIgnored,
         Phase::kStarting, true, true},
        {"GetKeywordInADetection", "GetKeyword", kHostile, &detect, Fate::kIgnored, Phase::kRunning,
         true, true},
        {"GetQualifier", "GetQualifier", kHostile, &useAndClose<getQualifier>,
         Fate::kNotFoundIsGood, Phase::kRunning, true, true, &openToRead},
    };
}

}  // namespace

std::vector<Situation> PluginSituations() {
    std::vector<Situation> all = lifeSituations();
    for (auto* family : {&objectSituations, &OperationSituations})
        for (Situation& situation : family()) all.push_back(std::move(situation));
    return all;
}

}  // namespace oam::torture
