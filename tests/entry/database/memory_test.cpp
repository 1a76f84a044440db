// What the service leaves behind when memory runs out, at each allocation of an operation in turn.
#include "support/allocation_fuse.h"
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;

class WithoutMemory : public ServiceTest {
  protected:
    void SetUp() override {
        home.WriteDataFile("Thing.xmo", kThing);
        AddPluginFor("x.bpi", {"Prod"});
    }

    const std::string kThing = DataFile("Thing", {{"Key", "old"}, {"Name", "Thing"}});
};

TEST_F(WithoutMemory, StartFailsAsAWholeAndSpoilsNoFile) {
    const oam_result last =
        FailEachAllocation([] { return _oamInit(); },
                           [&](oam_result answer) {
                               EXPECT_EQ(g_bOamIsRunning, answer == OAM_SUCCESS);
                               EXPECT_EQ(_oamExit(), OAM_SUCCESS);
                               EXPECT_EQ(home.ReadDataFile("Thing.xmo"), kThing);
                           });
    EXPECT_EQ(last, OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", "Thing", "x.bpi"));
    EXPECT_EQ(home.ReadDataFile("Super.xmo"), DataFile("Supervisor", SupervisorEntries()));
}

TEST_F(WithoutMemory, RegistrationLeavesTheTable) {
    Start();
    for (unsigned long client = 1; client <= 16; ++client) {
        EXPECT_EQ(_oamAlertRegister(client), OAM_SUCCESS);
    }
    // The seventeenth makes the table grow.
    EXPECT_EQ(FailEachAllocation([] { return _oamAlertRegister(17); },
                                 [](oam_result answer) {
                                     EXPECT_EQ(answer, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_EQ(_oamAlertUnregister(17), OAMERR_NOT_FOUND);
                                 }),
              OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_EQ(alerts.All().size(), 18u);
}

TEST_F(WithoutMemory, AlertForManyClientsReachesTheServerAlone) {
    Start();
    for (unsigned long client = 1; client <= 40; ++client) {
        EXPECT_EQ(_oamAlertRegister(client), OAM_SUCCESS);
    }
    alerts.Clear();
    EXPECT_EQ(FailEachAllocation([&] { return Raise(OAMEVN_ALERT, 0, "Test", "text"); },
                                 [&](oam_result answer) {
                                     EXPECT_EQ(answer, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_EQ(alerts.All().size(), 1u);
                                     alerts.Clear();
                                 }),
              OAM_SUCCESS);
    EXPECT_EQ(alerts.All().size(), 41u);
}

TEST_F(WithoutMemory, RemovalThatShrinksTheTableLeavesIt) {
    Start();
    for (unsigned long client = 1; client <= 17; ++client) {
        EXPECT_EQ(_oamAlertRegister(client), OAM_SUCCESS);
    }
    EXPECT_EQ(FailEachAllocation([] { return _oamAlertUnregister(5); },
                                 [](oam_result answer) {
                                     EXPECT_EQ(answer, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_EQ(_oamAlertRegister(5), OAMERR_ALREADY_EXISTS);
                                 }),
              OAM_SUCCESS);
}

TEST_F(WithoutMemory, NewKeywordIsWholeOrAbsent) {
    Start();
    const unsigned long handle = DbOpen("Thing", kProvider);
    EXPECT_EQ(FailEachAllocation([&] { return _oamDbSetKeyword(handle, "New", "value"); },
                                 [&](oam_result answer) {
                                     if (answer == OAM_SUCCESS) {
                                         // Kept: a value that could not be copied is empty and no
                                         // failure.
                                         EXPECT_EQ(DbGetKeyword(handle, "New"), Is(""));
                                         EXPECT_EQ(_oamDbRemoveKeyword(handle, "New"), OAM_SUCCESS);
                                     }
                                     EXPECT_THAT(answer,
                                                 AnyOf(OAM_SUCCESS, OAMERR_NOT_ENOUGH_MEMORY));
                                     EXPECT_THAT(EntryNames(handle), ElementsAre("Key", "Name"));
                                 }),
              OAM_SUCCESS);
    EXPECT_EQ(DbGetKeyword(handle, "New"), Is("value"));
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
}

TEST_F(WithoutMemory, KeptValueThatCannotBeCopiedIsEmptyAndNoFailure) {
    Start();
    const unsigned long handle = DbOpen("Thing", kWrite);
    EXPECT_EQ(FailEachAllocation([&] { return _oamDbSetKeyword(handle, "Key", "new"); },
                                 [&](oam_result answer) {
                                     EXPECT_EQ(answer, OAM_SUCCESS);
                                     EXPECT_EQ(DbGetKeyword(handle, "Key"), Is(""));
                                 }),
              OAM_SUCCESS);
    EXPECT_EQ(DbGetKeyword(handle, "Key"), Is("new"));
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
}

TEST_F(WithoutMemory, OpeningLeavesTheObjectClosed) {
    Start();
    unsigned long handle = 0;
    EXPECT_EQ(FailEachAllocation(
                  [&] { return _oamOpenObject(kClient, "x.bpi", &handle, kRead); },
                  [&](oam_result answer) {
                      if (answer == OAM_SUCCESS) {
                          EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
                      }
                      EXPECT_THAT(answer, AnyOf(OAM_SUCCESS, OAMERR_NOT_ENOUGH_MEMORY,
                                                OAMERR_FILE_READ_ERROR));
                      EXPECT_EQ(Change("x.bpi", "Name", "x.bpi"), OAM_SUCCESS) << "it is closed";
                  }),
              OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_F(WithoutMemory, CommitWritesTheOldFileOrTheNew) {
    Start();
    const std::string changed = DataFile("Thing", {{"Key", "new"}, {"Name", "Thing"}});
    unsigned long handle = 0;
    auto prepare = [&] {
        home.WriteDataFile("Thing.xmo", kThing);
        handle = DbOpen("Thing", kWrite);
        EXPECT_EQ(_oamDbSetKeyword(handle, "Key", "new"), OAM_SUCCESS);
    };
    prepare();
    EXPECT_EQ(FailEachAllocation([&] { return _oamDbCloseObject(handle); },
                                 [&](oam_result answer) {
                                     EXPECT_EQ(home.ReadDataFile("Thing.xmo"),
                                               answer == OAM_SUCCESS ? changed : kThing);
                                     prepare();
                                 }),
              OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Thing.xmo"), changed);
}

TEST_F(WithoutMemory, RefusedCreationLeavesNothing) {
    Start();
    char name[32] = "";
    auto files = home.List("oam/cfg");
    EXPECT_EQ(
        FailEachAllocation([&] { return _oamCreateBoard("Prod", name, sizeof name); },
                           [&](oam_result answer) {
                               if (answer == OAM_SUCCESS) {
                                   EXPECT_EQ(_oamDeleteBoard(name), OAM_SUCCESS);
                               }
                               EXPECT_THAT(Objects(), ElementsAre("Supervisor", "Thing", "x.bpi"));
                               EXPECT_EQ(home.List("oam/cfg"), files);
                               EXPECT_EQ(_oamBoardEnum(0, name, sizeof name), OAMERR_NOT_FOUND);
                           }),
        OAM_SUCCESS);
    EXPECT_STREQ(name, "Prod 0");
}

TEST_F(WithoutMemory, ExportIsWholeOrAbsent) {
    Start();
    EXPECT_EQ(_oamConfigExport(home.Path("whole").c_str()), OAM_SUCCESS);
    const std::string whole = home.Read("whole");
    EXPECT_EQ(FailEachAllocation([&] { return _oamConfigExport(home.Path("export").c_str()); },
                                 [&](oam_result answer) {
                                     EXPECT_EQ(home.Exists("export"), answer == OAM_SUCCESS);
                                     if (answer == OAM_SUCCESS) {
                                         EXPECT_EQ(home.Read("export"), whole);
                                     }
                                     home.Remove("export");
                                 }),
              OAM_SUCCESS);
    EXPECT_EQ(home.Read("export"), whole);
}

TEST_F(WithoutMemory, ImportNeverLosesTheOldFiles) {
    Start();
    home.Write("import", ExportFile({{"New", {{"Name", "New"}}}}));
    const oam_result last = FailEachAllocation(
        [&] { return _oamConfigImport(home.Path("import").c_str()); },
        [&](oam_result answer) {
            if (answer != OAM_SUCCESS) {
                const bool kept = home.Exists("oam/cfg/Thing.xmo");
                EXPECT_EQ(home.Read(kept ? "oam/cfg/Thing.xmo" : "oam/cfg/import-refused/Thing.xmo"),
                          kThing);
            }
            EXPECT_EQ(_oamExit(), OAM_SUCCESS);
            home.Remove("oam/cfg");
            home.MakeDirectory("oam/cfg");
            home.WriteDataFile("Thing.xmo", kThing);
            Start();
        });
    EXPECT_EQ(last, OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("New", "Supervisor", "x.bpi"));
}

}  // namespace
}  // namespace oam::test
