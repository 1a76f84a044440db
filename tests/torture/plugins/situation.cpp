#include "situation.h"

#include <gtest/gtest.h>

#include <string_view>

#include "oam/entry.h"
#include "support/objects.h"

namespace oam::torture {

std::ostream& operator<<(std::ostream& out, const Situation& situation) {
    return out << situation.name;
}

std::vector<Situation> AllSituations() {
    std::vector<Situation> all = PluginSituations();
    for (Situation& situation : ComponentSituations()) all.push_back(std::move(situation));
    return all;
}

std::size_t IndexOf(const Situation& wanted) {
    const std::string_view name = wanted.name;
    std::size_t index = 0;
    for (const Situation& situation : AllSituations()) {
        if (situation.name == name) break;
        ++index;
    }
    return index;
}

unsigned ExpectedResult(const Situation& situation, unsigned code) {
    switch (situation.fate) {
        case Fate::kAnswered:
            return code;
        case Fate::kNotFoundIsGood:
            return code == OAMERR_NOT_FOUND ? OAM_SUCCESS : code;
        case Fate::kTold:
            return code == OAM_SUCCESS ? OAM_INFORMATION : OAM_ERROR;
        case Fate::kIgnored:
        case Fate::kNoCode:
            break;
    }
    return OAM_SUCCESS;
}

unsigned StartService(World&) { return _oamInit(); }

unsigned StopService(World&) { return _oamExit(); }

unsigned ImportAll(World& world) { return _oamConfigImport(world.Path(kImport).c_str()); }

unsigned RaiseAlert(World&) {
    return test::Raise(OAMEVN_BOARD_DEAD, OAM_WARNING, kBoard, "it is dead");
}

unsigned RenameBoard(World&) { return test::Change(kGoodBoard, "Name", "Better"); }

unsigned AskText(World&) {
    (void)_oamGetText(0x51000001);
    return OAM_SUCCESS;
}

void SwitchTraceOn(World&) {
    EXPECT_EQ(test::Change("Supervisor", "OammonLog", "Yes"), OAM_SUCCESS);
}

void OpenFor(World& world, const char* object, unsigned mode) {
    world.handle = test::Open(object, mode);
}

}  // namespace oam::torture
