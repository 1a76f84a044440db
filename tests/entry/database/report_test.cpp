// The configuration report.
#include "support/file_limit.h"
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::IsEmpty;

using ConfigurationReport = ServiceTest;

constexpr const char* kReport = "oam/log/oam.rpt";

TEST_F(ConfigurationReport, GrowsByHeaderAndTextOfEachReport) {
    Start();
    EXPECT_FALSE(home.Exists(kReport));
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "First", "the text\n"), OAM_SUCCESS);
    EXPECT_EQ(home.Read(kReport),
              "\nCONFIGURATION REPORT - First\n------------------------------\nthe text\n");
    EXPECT_EQ(Raise(OAMEVN_REPORT, 2, "Second %s", "no line feed, 100%n"), OAM_SUCCESS);
    EXPECT_EQ(home.Read(kReport),
              "\nCONFIGURATION REPORT - First\n------------------------------\nthe text\n"
              "\nCONFIGURATION REPORT - Second %s\n------------------------------\n"
              "no line feed, 100%n");
}

TEST_F(ConfigurationReport, GoesToNobodyElse) {
    AddComponent("c.emc");
    AddPlugin("a.bpi");
    EXPECT_EQ(_oamAlertRegister(3), OAM_SUCCESS);
    Start();
    recorder.Clear();
    alerts.Clear();
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_THAT(alerts.All(), IsEmpty());
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

TEST_F(ConfigurationReport, IsFreshAfterEveryStart) {
    home.Write(kReport, "of an earlier run");
    Start();
    EXPECT_FALSE(home.Exists(kReport));
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_TRUE(home.Exists(kReport)) << "it lives until the next start";
    EXPECT_EQ(_oamInit(), OAM_SUCCESS);
    EXPECT_FALSE(home.Exists(kReport));
}

TEST_F(ConfigurationReport, ThatCannotBeOpenedIsAWriteError) {
    Start();
    home.MakeDirectory(kReport);
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "Test", "text"), OAMERR_FILE_WRITE_ERROR);
    home.Remove(kReport);
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "Test", "text"), OAM_SUCCESS);
}

TEST_F(ConfigurationReport, ThatCannotBeWrittenIsAWriteError) {
    Start();
    FileSizeLimit limit(10);
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "Test", "text"), OAMERR_FILE_WRITE_ERROR);
}

}  // namespace
}  // namespace oam::test
