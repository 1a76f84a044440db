// The start-up scan: what it tells, what it rejects, what stops it.
#include <sys/stat.h>

#include <filesystem>

#include "by_hand.h"
#include "config_room.h"
#include "support/allocation_fuse.h"
#include "support/log_text.h"

namespace oam::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* kHeading =
    "\nListing of managed object data files found:\n"
    "\nFILENAME        SIZE  DATE                      ATTR\n"
    "--------        ----  ----                      ----\n";

class StartupScan : public ConfigRoom {
  protected:
    ~StartupScan() override { manager.Exit(); }

    // The calls without the announcements and confirmations of single files.
    std::vector<std::string> Rejections() {
        std::vector<std::string> found;
        for (const std::string& call : doors.CallsOf({"AlertNotify"})) {
            if (call.find(", Supervisor, ") != std::string::npos) found.push_back(call);
        }
        return found;
    }
    static std::string Rejection(const std::string& file, const std::string& newFile) {
        return "AlertNotify(OAMEVN_ALERT, 2, Supervisor, Rejecting invalid object data file \"" +
               file + "\", saving to \"" + newFile + "\".)";
    }
    void AddObject(const std::string& file, const std::string& name) {
        home.WriteDataFile(file, DataFile(name, {{"Name", name}}));
    }

    CMObjMgr manager;
};

TEST_F(StartupScan, OfAnEmptyDirectoryMakesTheSupervisor) {
    EXPECT_EQ(manager.Init(), OAM_SUCCESS);
    EXPECT_EQ(doors.DebugText(), "No managed object data files found.\n");
    EXPECT_THAT(Names(manager), ElementsAre("Supervisor"));
    EXPECT_EQ(home.ReadDataFile("Super.xmo"), DataFile("Supervisor", SupervisorEntries()));
    EXPECT_FALSE(manager.AnyOpen());
}

TEST_F(StartupScan, KeptWithoutItsDirectoryIsNoFailureAndHasNoSupervisor) {
    home.Remove("oam");
    home.Write("oam", "a file in the way");
    EXPECT_EQ(manager.Init(), OAM_SUCCESS);
    EXPECT_EQ(doors.DebugText(), "Directory for managed object data files \"" +
                                     home.Path("oam/cfg") + "\" not found.\n");
    EXPECT_EQ(manager.Count(), 0);
}

TEST_F(StartupScan, TellsEachFileAndConfirmsIt) {
    AddObject("Obj4.xmo", "Board 1");
    const std::string path = home.Path("oam/cfg/Obj4.xmo");
    const std::string loading = LoadingText(path);
    const std::string date = loading.substr(loading.size() - 27, 24);
    const std::string size = std::to_string(std::filesystem::file_size(path));
    EXPECT_EQ(manager.Init(), OAM_SUCCESS);
    EXPECT_EQ(doors.DebugText(), kHeading + ("Obj4.xmo         " + size) + "  " + date +
                                     "  RW \n" + "\n");
    EXPECT_THAT(doors.CallsOf({"AlertNotify"}),
                ElementsAre("AlertNotify(OAMEVN_ALERT, 0, Config, " + loading + ")",
                            "AlertNotify(OAMEVN_ALERT, 0, Config, Obj4.xmo DONE)"));
    EXPECT_THAT(Names(manager), ElementsAre("Board 1", "Supervisor"));
    EXPECT_STREQ(manager.Find("Board 1")->DataFileName(), "Obj4.xmo");
}

TEST_F(StartupScan, AsksNoPluginAboutWhatItFinds) {
    AddObject("Obj4.xmo", "Board 1");
    AddObject("x.xmo", "x.bpi");
    EXPECT_EQ(manager.Init(), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"BoardOpen", "BoardCreate", "PluginOpen", "BoardClose"}), IsEmpty());
}

TEST_F(StartupScan, KeepsAStoredSupervisorAndWritesItAnew) {
    home.WriteDataFile("Super.xmo",
                       DataFile("Supervisor", {{"AutoStartEnabled", "yes"}, {"Mine", "kept"}}));
    EXPECT_EQ(manager.Init(), OAM_SUCCESS);
    Entries expected = With(SupervisorEntries(), "AutoStartEnabled", "Yes");
    expected.insert(expected.begin() + 6, {"Mine", "kept"});
    EXPECT_EQ(home.ReadDataFile("Super.xmo"), DataFile("Supervisor", expected));
}

TEST_F(StartupScan, FileWithoutAKeywordIsRejected) {
    home.WriteDataFile("a.b.XMO", "nothing");
    EXPECT_EQ(manager.Init(), OAM_SUCCESS);
    EXPECT_THAT(Rejections(), ElementsAre(Rejection("a.b.XMO", "a.b.bak")));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo", "a.b.bak"));
    EXPECT_THAT(doors.Calls(), Not(Contains(HasSubstr("a.b.XMO DONE"))));
}

TEST_F(StartupScan, SecondFileOfANameIsRejected) {
    AddObject("Obj0.xmo", "Board 1");
    AddObject("Obj1.xmo", "BOARD 1");
    EXPECT_EQ(manager.Init(), OAM_SUCCESS);
    EXPECT_EQ(manager.Count(), 2);
    ASSERT_EQ(Rejections().size(), 1u);
    const std::string kept = manager.At(0)->DataFileName();
    EXPECT_EQ(Rejections().front(), kept == "Obj0.xmo" ? Rejection("Obj1.xmo", "Obj1.bak")
                                                       : Rejection("Obj0.xmo", "Obj0.bak"));
}

TEST_F(StartupScan, FileThatSpoilsLaterIsRejectedAndItsObjectRemoved) {
    const std::string whole = DataFile("Board 1", {{"Name", "Board 1"}});
    home.WriteDataFile("Obj0.xmo", whole.substr(0, whole.rfind("</")));
    EXPECT_EQ(manager.Init(), OAM_SUCCESS);
    EXPECT_THAT(Rejections(), ElementsAre(Rejection("Obj0.xmo", "Obj0.bak")));
    EXPECT_THAT(doors.CallsOf({"BoardDelete"}), ElementsAre("BoardDelete(Board 1)"));
    EXPECT_THAT(doors.Calls(), Contains("AlertNotify(OAMEVN_DELETED, 0, Board 1, )"));
    EXPECT_THAT(Names(manager), ElementsAre("Supervisor"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.bak", "Super.xmo"));
}

// Neither a file as the writer writes it nor any other.
TEST_F(StartupScan, WithoutMemoryRejectsNoFileThatIsSound) {
    home.WriteDataFile("Obj0.xmo", DataFile("Alpha", {{"Key", "1"}, {"Name", "Alpha"}}));
    home.WriteDataFile("Obj1.xmo", AsByHand(DataFile("Beta", {{"Key", "2"}, {"Name", "Beta"}})));
    const auto start = [&] {
        manager.Exit();
        return manager.Init();
    };
    const auto check = [&](oam_result result) {
        EXPECT_THAT(home.List("oam/cfg"), Not(Contains(EndsWith(".bak"))));
        if (result == OAM_SUCCESS) {
            EXPECT_THAT(Names(manager), ElementsAre("Alpha", "Beta", "Supervisor"));
        } else {
            EXPECT_TRUE(result == OAMERR_NOT_ENOUGH_MEMORY || result == OAMERR_FILE_READ_ERROR)
                << result;
        }
    };
    const oam_result started = FailEachAllocation(start, check);
    EXPECT_EQ(started, OAM_SUCCESS);
    check(started);
}

// A name that cannot be made for what is set aside leaves it where it is.
TEST_F(StartupScan, WithoutMemoryKeepsASpoiledFileUntilItCanBeSetAside) {
    const auto start = [&] {
        manager.Exit();
        home.Remove("oam/cfg/Obj0.bak");
        home.WriteDataFile("Obj0.xmo", "spoiled");
        return manager.Init();
    };
    const oam_result started = FailEachAllocation(start, [&](oam_result result) {
        const bool isSetAside = home.Exists("oam/cfg/Obj0.bak");
        EXPECT_NE(isSetAside, home.Exists("oam/cfg/Obj0.xmo"));
        EXPECT_TRUE(isSetAside || result != OAM_SUCCESS);
    });
    EXPECT_EQ(started, OAM_SUCCESS);
    EXPECT_EQ(home.Read("oam/cfg/Obj0.bak"), "spoiled");
}

TEST_F(StartupScan, RejectedFileReplacesAnEarlierBackup) {
    home.WriteDataFile("Obj0.xmo", "spoiled");
    home.Write("oam/cfg/Obj0.bak", "earlier");
    EXPECT_EQ(manager.Init(), OAM_SUCCESS);
    EXPECT_EQ(home.Read("oam/cfg/Obj0.bak"), "spoiled");
}

TEST_F(StartupScan, FileThatCannotBeOpenedStopsTheStart) {
    AddObject("Obj0.xmo", "Board 1");
    std::filesystem::create_symlink(home.Path("nowhere"), home.Path("oam/cfg/Obj1.xmo"));
    EXPECT_EQ(manager.Init(), OAMERR_FILE_READ_ERROR);
    EXPECT_EQ(manager.Count(), 0);
    EXPECT_THAT(doors.DebugText(),
                HasSubstr("Can't get file info for \"" + home.Path("oam/cfg/Obj1.xmo") + "\"\n"));
    EXPECT_THAT(doors.DebugText(), EndsWith("\n\n"));
    EXPECT_FALSE(home.Exists("oam/cfg/Super.xmo"));
}

TEST_F(StartupScan, PathOf128CharactersStopsTheStart) {
    const std::string name(124 - home.Path("oam/cfg/").size(), 'x');
    home.WriteDataFile(name + ".xmo", "");
    EXPECT_EQ(manager.Init(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(manager.Count(), 0);
}

TEST_F(StartupScan, PathOf127CharactersIsRead) {
    const std::string name(123 - home.Path("oam/cfg/").size(), 'x');
    AddObject(name + ".xmo", "Board 1");
    EXPECT_EQ(manager.Init(), OAM_SUCCESS);
    EXPECT_THAT(Names(manager), ElementsAre("Board 1", "Supervisor"));
}

TEST_F(StartupScan, InstallationPathThatDoesNotFitStopsTheStart) {
    home.MoveRootToLength(120);
    EXPECT_EQ(manager.Init(), OAMERR_NOT_ENOUGH_MEMORY);
}

TEST_F(StartupScan, WhatADeathLeftUnfinishedIsRemoved) {
    AddObject("Obj0.xmo", "Board 1");
    home.Write("oam/cfg/Obj0.xmo.saving", "half");
    home.Write("oam/cfg/Obj1.xmo.making", "half");
    home.Write("oam/cfg/notes.txt", "mine");
    EXPECT_EQ(manager.Init(), OAM_SUCCESS);
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo", "Super.xmo", "notes.txt"));
}

TEST_F(StartupScan, ImportThatDidNotEndIsRolledBackFirst) {
    AddObject("Obj0.xmo", "New");
    home.MakeDirectory("oam/cfg/import-aside");
    home.Write("oam/cfg/import-aside/Obj7.xmo", DataFile("Old", {{"Name", "Old"}}));
    EXPECT_EQ(manager.Init(), OAM_SUCCESS);
    EXPECT_THAT(Names(manager), ElementsAre("Old", "Supervisor"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj7.xmo", "Super.xmo"));
}

TEST_F(StartupScan, FailureOfTheSupervisorLeavesNoObjects) {
    home.WriteDataFile("Super.xmo", DataFile("Supervisor", {{"Name", "Supervisor"}}));
    doors.Answer("BoardIDsValidateSet", oam_result(5));
    EXPECT_EQ(manager.Init(), oam_result(5));
    EXPECT_EQ(manager.Count(), 0);
    EXPECT_EQ(openObjects().Count(), 0);
}

}  // namespace
}  // namespace oam::test
