#include "world.h"

#include <gtest/gtest.h>

#include "held_threads.h"
#include "oam/entry.h"
#include "oam/shadow.h"
#include "support/data_file.h"

namespace oam::torture {

namespace {

// The entries of "Thing" besides its name.
std::string fillerName(int index) { return "Fill" + std::to_string(100 + index); }

unsigned initialise() {
    const HeldThreads hold;
    return _oamInit();
}

}  // namespace

World::World(int count) : count_(count) {
    home.AddModule("recorder.bpi", kPlugin);
    home.AddModule("recorder.emc", kComponent);
    home.MakeDirectory("out");
    recorder.Script(kPlugin, [](test::ModuleScript& script) {
        script.products = {kProduct};
        script.boardKeywords = {{"Gain", "3"}, {"Eeprom.SerialNum", "S-1"}};
    });
    ScriptDetected(count);
    WriteThing();
    home.WriteDataFile("Super.xmo",
                       test::DataFile("Supervisor", test::With(test::SupervisorEntries(),
                                                               "AutoStartEnabled", "Yes")));
    EXPECT_EQ(initialise(), OAM_SUCCESS);
    RunHeldThreads();
    FillBoards();
    RegisterClients();
    EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    for (const std::string& name : home.List("oam/cfg")) {
        dataFiles_[name] = home.ReadDataFile(name);
    }
}

World::~World() {
    (void)_oamExit();
    (void)oamShadowExit();
    RunHeldThreads();
}

std::string World::LastEntry() const { return count_ > 1 ? fillerName(count_ - 2) : "Name"; }

void World::WriteThing() const {
    test::Entries entries;
    for (int i = 0; i < count_ - 1; ++i) entries.emplace_back(fillerName(i), "old");
    entries.emplace_back("Name", kThing);
    home.WriteDataFile("Thing.xmo", test::DataFile(kThing, entries));
}

void World::RegisterClients() const {
    for (unsigned long client = kFirstClient; client <= LastClient(); ++client) {
        EXPECT_EQ(_oamAlertRegister(client), OAM_SUCCESS);
    }
}

void World::FillBoards() {
    char name[128];
    for (int i = 0; i < count_; ++i) {
        EXPECT_EQ(_oamCreateBoard(kProduct, name, sizeof name), OAM_SUCCESS);
    }
}

void World::ScriptDetected(int count) {
    recorder.Script(kPlugin, [count](test::ModuleScript& script) {
        script.detected.clear();
        for (int i = 0; i < count; ++i) {
            const std::string number = std::to_string(100 + i);
            script.detected.push_back({"Found " + number, kProduct, "7", number});
        }
    });
}

void World::StartAnew() {
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    RunHeldThreads();
    home.Remove("oam/cfg");
    home.MakeDirectory("oam/cfg");
    for (const auto& [name, bytes] : dataFiles_) home.WriteDataFile(name, bytes);
    ScriptDetected(count_);
    EXPECT_EQ(initialise(), OAM_SUCCESS);
    RunHeldThreads();
    alerts.Install();
    RegisterClients();
    EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    handle = 0;
    openObject.clear();
}

bool World::HasDataFiles(const std::string& directory) const {
    for (const auto& [name, bytes] : dataFiles_) {
        const std::string path = directory + '/' + name;
        if (!home.Exists(path) || home.Read(path) != bytes) return false;
    }
    return true;
}

std::string World::ReachedClients() {
    alerts.Clear();
    (void)test::Raise(OAMEVN_ALERT, OAM_INFORMATION, "Test", "who is there");
    std::string clients;
    for (const test::Alert& alert : alerts.All()) clients += std::to_string(alert.client) + ' ';
    alerts.Clear();
    return clients;
}

}  // namespace oam::torture
