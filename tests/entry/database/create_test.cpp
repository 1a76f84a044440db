// Creating board objects.
#include <thread>

#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Create : public ServiceTest {
  protected:
    oam_result TryCreate(const char* product, char* name, unsigned size) {
        return _oamCreateBoard(product, name, size);
    }
};

TEST_F(Create, StoresTheStandardKeywordsBeforeThePluginAddsItsOwn) {
    Entries seen;
    AddPluginFor("x.bpi", {"Prod"});
    recorder.Script("x.bpi", [&](ModuleScript& script) {
        script.createBoard = [&](const char* board, const char*) {
            const unsigned long handle = DbOpen(board, kProvider);
            for (const std::string& name : EntryNames(handle)) {
                seen.emplace_back(name, DbGetKeyword(handle, name).text);
            }
            return unsigned{_oamDbCloseObject(handle)};
        };
    });
    Start();
    CreateBoard("Prod");
    EXPECT_EQ(seen, StandardEntries("Prod 0", "Prod"));
    EXPECT_THAT(recorder.Lines({"CreateBoard"}), ElementsAre("x.bpi CreateBoard(Prod 0, Prod)"));
}

TEST_F(Create, WritesTheBoardsFile) {
    AddPluginFor("x.bpi", {"Prod"}, {{"Extra", "of the plug-in"}, {"AutoStart", "Yes"}});
    Start();
    CreateBoard("Prod");
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"),
              DataFile("Prod 0", {{"AutoStart", "Yes"},
                                  {"AutoStop", "No"},
                                  {"Clocking.HBus.ClockMode", ""},
                                  {"Driver.BoardId", ""},
                                  {"Driver.Name", ""},
                                  {"Eeprom.SerialNum", ""},
                                  {"Extra", "of the plug-in"},
                                  {"Location.PCI.Bus", ""},
                                  {"Location.PCI.IOAddress", ""},
                                  {"Location.PCI.Slot", ""},
                                  {"Name", "Prod 0"},
                                  {"Name?Description", "name of managed object"},
                                  {"Name?Type", "Object"},
                                  {"Number", "0"},
                                  {"Product", "Prod"},
                                  {"Product?Type", "String"}}));
}

TEST_F(Create, TellsTheNewBoardOnce) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    alerts.Clear();
    CreateBoard("Prod");
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_CREATED, 0, "Prod 0", ""}));
}

TEST_F(Create, TellsItAfterTheLockIsReleased) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    oam_result other = OAMERR_BASE;
    alerts.AnswerWith([&](const Alert& alert) {
        if (alert.code != OAMEVN_CREATED) return 0u;
        std::thread([&] {
            unsigned long handle = 0;
            other = _oamDbOpenObject("Prod 0", &handle, kRead);
            if (other == OAM_SUCCESS) other = _oamDbCloseObject(handle);
        }).join();
        return 0u;
    });
    CreateBoard("Prod");
    EXPECT_EQ(other, OAM_SUCCESS);
}

TEST_F(Create, KeptUnknownProductIsToldAsCreatedAllTheSame) {
    Start();
    alerts.Clear();
    char name[32] = "";
    EXPECT_EQ(TryCreate("Nope", name, sizeof name), OAMERR_NOT_FOUND);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_DELETED, 0, "Nope 0", ""},
                                            Said{OAMEVN_CREATED, 0, "Nope 0", ""}));
    EXPECT_THAT(Objects(), ElementsAre("Supervisor"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo"));
}

TEST_F(Create, NameNeedsThirteenBytesMoreThanTheProduct) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    char name[32] = "";
    EXPECT_EQ(TryCreate("Prod", name, 17), OAM_SUCCESS);
    EXPECT_STREQ(name, "Prod 0");
    alerts.Clear();
    char small[32] = "mine";
    EXPECT_EQ(TryCreate("Prod", small, 16), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(small, "mine");
    EXPECT_THAT(Objects(), ElementsAre("Prod 0", "Supervisor", "x.bpi"));
}

TEST_F(Create, KeptTooSmallABufferIsToldAsCreatedAllTheSame) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    alerts.Clear();
    char small[16] = "mine";
    EXPECT_EQ(TryCreate("Prod", small, sizeof small), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_CREATED, 0, "mine", ""}));
}

TEST_F(Create, RefusedByThePluginLeavesNothing) {
    AddPluginFor("x.bpi", {"Prod"});
    recorder.Script("x.bpi", [](ModuleScript& script) {
        script.createBoard = [](const char*, const char*) { return 0x99u; };
    });
    Start();
    alerts.Clear();
    char name[32] = "";
    EXPECT_EQ(TryCreate("Prod", name, sizeof name), 0x99u);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_DELETED, 0, "Prod 0", ""},
                                            Said{OAMEVN_CREATED, 0, "Prod 0", ""}));
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", "x.bpi"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo", "x.xmo"));
    EXPECT_THAT(recorder.Lines({"DestroyBoard"}), IsEmpty()) << "it was never in the table";
}

TEST_F(Create, ThrowingPluginIsARefusal) {
    AddPluginFor("x.bpi", {"Prod"});
    recorder.Script("x.bpi", [](ModuleScript& script) {
        script.createBoard = [](const char*, const char*) -> unsigned { throw 7; };
    });
    Start();
    char name[32] = "";
    EXPECT_EQ(TryCreate("Prod", name, sizeof name), OAM_REASON_FAILED);
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", "x.bpi"));
}

TEST_F(Create, ProductIsFoundInAnyCaseAndNamesTheBoardAsAsked) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    EXPECT_EQ(CreateBoard("PROD"), "PROD 0");
    EXPECT_EQ(StoredKeywordOf("PROD 0", "Product"), Is("PROD"));
}

TEST_F(Create, EveryStartGivesTheSupervisorsEntriesAnew) {
    home.WriteDataFile("Super.xmo", DataFile("Supervisor", {{"Name", "Supervisor"},
                                                            {"Name?Description", "by hand"},
                                                            {"Name?Type", "by hand"},
                                                            {"OammonLog?Description", "by hand"},
                                                            {"Own", "stays"},
                                                            {"Version.Major", "77"},
                                                            {"Version.Minor?Type", "by hand"}}));
    Start();
    Entries expected = SupervisorEntries();
    expected.insert(expected.begin() + 12, {"Own", "stays"});
    EXPECT_EQ(home.ReadDataFile("Super.xmo"), DataFile("Supervisor", expected));
}

TEST_F(Create, FirstStartGivesAModulesObjectItsStandardKeywords) {
    AddPlugin("x.bpi");
    Start();
    EXPECT_EQ(home.ReadDataFile("x.xmo"), DataFile("x.bpi", StandardEntries("x.bpi")));
    EXPECT_THAT(alerts.Heard(OAMEVN_CREATED), IsEmpty());
    EXPECT_THAT(recorder.Lines({"CreateBoard"}), IsEmpty());
}

TEST_F(Create, LaterStartLeavesAModulesObjectAsItIs) {
    AddPlugin("x.bpi");
    home.WriteDataFile("x.xmo", DataFile("x.bpi", {{"Name", "x.bpi"}, {"Own", "stays"}}));
    const std::string before = home.ReadDataFile("x.xmo");
    Start();
    EXPECT_EQ(home.ReadDataFile("x.xmo"), before);
}

}  // namespace
}  // namespace oam::test
