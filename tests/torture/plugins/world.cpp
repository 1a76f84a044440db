#include "world.h"

#include <gtest/gtest.h>

#include <map>
#include <thread>

#include "support/data_file.h"
#include "support/objects.h"

namespace oam::torture {

namespace {

test::ObjectEntries board(int number, const std::string& name, const std::string& product,
                          const std::string& autoStop) {
    test::Entries entries = test::StandardEntries(name, product);
    entries.emplace_back("Number", std::to_string(number));
    entries.emplace_back("AutoStop", autoStop);
    entries.emplace_back("Gain", "3");
    return {name, entries};
}

}  // namespace

void FurnishWorld(const test::Installation& home) {
    home.AddModule("recorder.bpi", kPlugin);
    home.AddModule("recorder.bpi", kGoodPlugin);
    home.AddModule("recorder.emc", kComponent);
    home.AddModule("recorder.emc", kGoodComponent);
    const std::vector<test::ObjectEntries> objects = {
        board(0, kBoard, kProduct, "Yes"),
        board(1, kOtherBoard, kProduct, "No"),
        board(2, kGoodBoard, "Good", "No"),
        {kThing, test::StandardEntries(kThing)},
        {"Supervisor", test::With(test::SupervisorEntries(), "AutoStopEnabled", "Yes")},
    };
    for (size_t i = 0; i + 1 < objects.size(); ++i) {
        home.WriteDataFile("Obj" + std::to_string(i) + ".xmo",
                           test::DataFile(objects[i].name, objects[i].entries));
    }
    home.WriteDataFile("Super.xmo", test::DataFile(objects.back().name, objects.back().entries));
    home.Write(kImport, test::ExportFile(objects));
}

World::World(const test::Installation& installation) : home(installation) {
    recorder.Script(kPlugin, [](test::ModuleScript& script) {
        script.products = {kProduct};
        script.boardKeywords = {{"Gain", "3"}};
        script.detected = {{"Found A", kProduct, "1", "1"}, {"Found B", kProduct, "1", "2"}};
    });
    recorder.Script(kGoodPlugin, [](test::ModuleScript& script) { script.products = {"Good"}; });
}

void World::Start() { EXPECT_EQ(_oamInit(), OAM_SUCCESS) << home.Read("oam/log/startup.log"); }

void World::Arm(const std::vector<std::string>& files, const std::string& entry, const Act& act) {
    armed_ = files;
    for (const std::string& file : files) {
        recorder.Script(file, [&](test::ModuleScript& script) {
            script.first = [entry, act](const test::RecordedCall& call) {
                return call.entry == entry ? act(call) : std::nullopt;
            };
        });
    }
}

void World::Disarm() {
    for (const std::string& file : armed_)
        recorder.Script(file, [](test::ModuleScript& script) { script.first = nullptr; });
}

void World::ExpectStanding() {
    Disarm();
    ExpectUnlocked();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    Start();
    ExpectUnlocked();
    EXPECT_EQ(test::StoredKeywordOf("Supervisor", "Name"), test::Is("Supervisor"));
    EXPECT_EQ(test::KeywordOf("Supervisor", "BoardPlugins.Count"), test::Is("2"));
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    ExpectOrderlyLives();
    ExpectCleanDirectory();
}

// The manager lock, the table lock, the lanes, the client table and the shadow's lock; each may be
// refused because the service was stopped.
void World::ExpectUnlocked() const {
    std::thread([] {
        unsigned long open = 0;
        if (_oamDbOpenObject("Supervisor", &open, OAM_OPEN_READ) == OAM_SUCCESS) {
            EXPECT_EQ(_oamDbCloseObject(open), OAM_SUCCESS);
        }
        char name[128];
        (void)_oamBoardEnum(0, name, sizeof name);
        (void)test::Raise(OAMEVN_TRACE, OAM_INFORMATION, "Test", "who is there");
        (void)_oamAlertUnregister(99);
    }).join();
}

void World::ExpectOrderlyLives() const {
    std::map<std::string, bool> lives;
    for (const test::RecordedCall& call : recorder.Calls()) {
        if (call.entry == "Init") {
            EXPECT_FALSE(lives[call.file]) << call.file << " is initialised twice";
            lives[call.file] = true;
        }
        if (call.entry == "Exit") lives[call.file] = false;
    }
    for (const auto& [file, isAlive] : lives) EXPECT_FALSE(isAlive) << file << " was not ended";
}

void World::ExpectCleanDirectory() const {
    for (const std::string& name : home.List("oam/cfg")) {
        const bool isKept =
            name == "import-refused";  // of an import that a hostile module made fail
        EXPECT_TRUE(isKept || name.ends_with(".xmo")) << name << " was left or set aside";
    }
}

}  // namespace oam::torture
