// The configuration report: emptied at the start, one section for each report alert.
#include "alert/report.h"

#include "alert_room.h"
#include "support/file_limit.h"

namespace oam::test {
namespace {

using ::testing::IsEmpty;

constexpr const char* kReport = "oam/log/oam.rpt";

std::string Section(const std::string& source, const std::string& text) {
    return "\nCONFIGURATION REPORT - " + source + "\n------------------------------\n" + text;
}

class Report : public AlertRoom {
  protected:
    void Start() { ASSERT_EQ(AlertInit(), OAM_SUCCESS); }
};

TEST_F(Report, GrowsByAHeaderAndTheTextAsItIs) {
    Start();
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "Board 1", "no newline 100%s"), OAM_SUCCESS);
    EXPECT_EQ(Raise(OAMEVN_REPORT, 2, "x", "more\n"), OAM_SUCCESS);
    EXPECT_EQ(home.Read(kReport), Section("Board 1", "no newline 100%s") + Section("x", "more\n"));
}

TEST_F(Report, GoesToNobodyElse) {
    Start();
    InstallCallback();
    EXPECT_EQ(_oamAlertRegister(3), OAM_SUCCESS);
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "S", "T"), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Report, IsLoggedLikeAnyAlert) {
    OpenLog();
    Start();
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "S", "T"), OAM_SUCCESS);
    EXPECT_EQ(Log(), kLoggingStart + LogLine("S", 'I', "T"));
}

TEST_F(Report, IsFreshAtEveryStartAndOnlyMadeWhenThereIsOne) {
    home.Write(kReport, "of the last run");
    Start();
    EXPECT_FALSE(home.Exists(kReport));
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "S", "T"), OAM_SUCCESS);
    AlertExit();
    EXPECT_EQ(home.Read(kReport), Section("S", "T")) << "it lives until the next start";
    Start();
    EXPECT_FALSE(home.Exists(kReport));
}

TEST_F(Report, DirectoriesAreMade) {
    home.Remove("oam/log");
    Start();
    EXPECT_TRUE(home.Exists("oam/log"));
}

TEST_F(Report, IsRefusedWhileTheAlertSystemDoesNotRun) {
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "S", "T"), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_FALSE(home.Exists(kReport));
}

TEST_F(Report, ThatCannotBeOpenedIsAWriteError) {
    Start();
    home.MakeDirectory(kReport);
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "S", "T"), OAMERR_FILE_WRITE_ERROR);
}

TEST_F(Report, ThatCannotBeWrittenIsAWriteError) {
    Start();
    {
        const FileSizeLimit limit(0);
        EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "S", "T"), OAMERR_FILE_WRITE_ERROR);
    }
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "S", "T"), OAM_SUCCESS);
    EXPECT_EQ(home.Read(kReport), Section("S", "T"));
}

TEST_F(Report, ThatFailsBeforeItsEndIsAWriteError) {
    Start();
    const FileSizeLimit limit(0);
    const std::string longerThanABuffer(20000, 'S');
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, longerThanABuffer, "T"), OAMERR_FILE_WRITE_ERROR);
}

TEST_F(Report, PathThatDoesNotFitStopsTheStart) {
    home.MoveRootToLength(112);
    EXPECT_EQ(AlertInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Raise("not running"), OAMERR_SERVER_NOT_RUNNING);
}

TEST_F(Report, PathOf127CharactersFits) {
    home.MoveRootToLength(111);
    EXPECT_EQ(AlertInit(), OAM_SUCCESS);
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "S", "T"), OAM_SUCCESS);
    EXPECT_EQ(home.Read(kReport), Section("S", "T"));
}

}  // namespace
}  // namespace oam::test
