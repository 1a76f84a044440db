// The history beside the service itself.
#include <filesystem>

#include "configuration_file.h"
#include "history/configuration_export.h"
#include "history_fixture.h"
#include "oam/entry.h"
#include "object_change.h"
#include "plugins/recorder/host.h"
#include "support/alert_log.h"

namespace oam::server::test {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ServiceHistory : public HistoryTest {
  protected:
    ServiceHistory() {
        home.AddModule("recorder.bpi", "p.bpi");
        recorder.Script("p.bpi", [](oam::test::ModuleScript& script) {
            script.products = {"SIM-E1"};
            script.boardKeywords = {{"Speed", "1"}};
        });
    }
    ~ServiceHistory() override { (void)_oamExit(); }

    void Start() {
        EXPECT_THAT(history->RestoreSpoiled(), IsEmpty());
        StartService();
    }
    void StartService() {
        ASSERT_EQ(_oamInit(), OAM_SUCCESS) << home.Read("oam/log/startup.log");
        history->Record("service", "start");
    }
    void Restart() {
        (void)_oamExit();
        Reopen();
    }
    std::string CreateBoard() const {
        char name[128];
        EXPECT_EQ(_oamCreateBoard("SIM-E1", name, sizeof name), OAM_SUCCESS);
        return name;
    }
    void Import(Generation generation) {
        home.Write("state", ExportText(history->State(generation)));
        EXPECT_THAT(JudgeImport(home.Path("state")).findings, IsEmpty());
        ImportConfiguration(home.Path("state"));
    }

    oam::test::Recorder recorder;
};

TEST_F(ServiceHistory, RecordsWhatAStartMakes) {
    Start();
    EXPECT_THAT(Entries(), ElementsAre("1 (found at start) start: Supervisor",
                                       "1 (found at start) start: p.bpi"));
    Restart();
    Start();
    EXPECT_EQ(history->Generations().newest, 1u);
}

TEST_F(ServiceHistory, RecordsCreationsChangesRenamesAndDeletions) {
    Start();
    const std::string board = CreateBoard();
    EXPECT_EQ(Record("ann", "create"), 2u);
    ApplyChange(board, {{"Speed", "2"}});
    EXPECT_EQ(Record("ann", "change"), 3u);
    EXPECT_THAT(history->List({.limit = 1})[0].changes, ElementsAre(Changed("Speed", "1", "2")));
    ApplyChange(board, {{"Name", "Left"}});
    EXPECT_EQ(Record("bob", "change"), 4u);
    EXPECT_THAT(history->List({.limit = 1})[0].changes,
                ElementsAre(Changed("Name", board, "Left")));
    EXPECT_EQ(_oamDeleteBoard("Left"), OAM_SUCCESS);
    EXPECT_EQ(Record("bob", "delete"), 5u);
    EXPECT_THAT(Entries({.limit = 4}),
                ElementsAre("5 bob delete: Left", "4 bob change: Left", "3 ann change: " + board,
                            "2 ann create: " + board));
}

TEST_F(ServiceHistory, ExportsWhatTheServiceExports) {
    Start();
    (void)CreateBoard();
    ApplyChange(CreateBoard(), {{"Number", "3"}, {"Speed", "\xc3\xa4 b"}});
    ApplyChange("Supervisor", {{"AutoStartEnabled", "Yes"}});
    Record();
    ExportConfiguration(home.Path("exported"));
    EXPECT_EQ(ExportText(history->State(2)), home.Read("exported"));
}

TEST_F(ServiceHistory, BringsTheWholeConfigurationBack) {
    Start();
    const std::string first = CreateBoard();
    ApplyChange(first, {{"Speed", "9"}});
    Record("ann", "create");
    const std::string second = CreateBoard();
    ApplyChange(second, {{"Number", "1"}});
    ApplyChange(first, {{"Speed", "1"}, {"Name", "Left"}});
    Record("ann", "change");
    const std::string third = CreateBoard();
    ApplyChange(third, {{"Number", "2"}});
    EXPECT_EQ(_oamDeleteBoard("Left"), OAM_SUCCESS);
    Record("ann", "change");
    const Generation newest = history->Generations().newest;

    Import(2);
    EXPECT_EQ(Record("ann", "rollback"), newest + 1);
    EXPECT_THAT(history->Compare(2, 0), IsEmpty());
    Import(newest);
    EXPECT_EQ(Record("ann", "rollback"), newest + 2);
    EXPECT_THAT(history->Compare(newest, 0), IsEmpty());
}

TEST_F(ServiceHistory, BringsOneObjectsKeywordsBack) {
    Start();
    const std::string board = CreateBoard();
    Record("ann", "create");
    ApplyChange(board, {{"Speed", "2"}, {"Number", "5"}});
    Record("ann", "change");
    const auto rollback = history->RollBack(board, 2);
    EXPECT_THAT(rollback.others, IsEmpty());
    ApplyChange(board, rollback.assignments);
    EXPECT_EQ(Record("ann", "rollback"), 4u);
    EXPECT_THAT(history->Compare(2, 4), IsEmpty());
}

TEST_F(ServiceHistory, SavesAnObjectThatTheServiceWouldDrop) {
    Start();
    const std::string board = CreateBoard();
    ApplyChange(board, {{"Speed", "2"}});
    Record();
    Restart();
    files.Commit("Obj0.xmo", "");
    EXPECT_THAT(history->RestoreSpoiled(), ElementsAre(HasSubstr("is put back")));
    StartService();
    EXPECT_THAT(home.List("oam/cfg"), Contains("Obj0.xmo.spoiled-1"));
    ExportConfiguration(home.Path("exported"));
    EXPECT_THAT(home.Read("exported"), HasSubstr("<Speed>2</>"));
    EXPECT_THAT(Entries({.limit = 1}), ElementsAre("3 service restore: " + board));
}

TEST_F(ServiceHistory, SavesAnObjectWhoseFileIsLost) {
    Start();
    const std::string board = CreateBoard();
    Record();
    Restart();
    files.Delete("Obj0.xmo");
    EXPECT_THAT(history->RestoreSpoiled(), ElementsAre(HasSubstr("was missing")));
}

TEST_F(ServiceHistory, KnowsADeletionWithoutTheDaemon) {
    Start();
    const std::string board = CreateBoard();
    Record();
    Restart();
    ASSERT_EQ(_oamInit(), OAM_SUCCESS);
    EXPECT_EQ(_oamDeleteBoard(board.c_str()), OAM_SUCCESS);
    (void)_oamExit();
    EXPECT_THAT(history->RestoreSpoiled(), ElementsAre(HasSubstr("counts as deleted")));
    EXPECT_THAT(Entries({.limit = 1}), ElementsAre("3 (found at start) start: " + board));
}

TEST_F(ServiceHistory, SavesWhatAStartWithoutTheDaemonDropped) {
    Start();
    const std::string board = CreateBoard();
    Record();
    Restart();
    files.Commit("Obj0.xmo", "");
    ASSERT_EQ(_oamInit(), OAM_SUCCESS);
    (void)_oamExit();
    EXPECT_FALSE(home.Exists("oam/cfg/Obj0.xmo"));
    EXPECT_THAT(history->RestoreSpoiled(), ElementsAre(HasSubstr("was missing")));
    EXPECT_TRUE(home.Exists("oam/cfg/Obj0.xmo"));
}

}  // namespace oam::server::test
