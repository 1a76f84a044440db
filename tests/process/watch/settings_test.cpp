// The stored keywords of the component's object.
#include "watch_test.h"

namespace oam::test {
namespace {

using ::testing::IsEmpty;

class WatchSettings : public WatchTest {};

TEST_F(WatchSettings, AreThereFromTheFirstStart) {
    EXPECT_EQ(KeywordOf(kWatch, "Threshold.Failures"), Is("3"));
    EXPECT_EQ(KeywordOf(kWatch, "Threshold.WindowSeconds"), Is("600"));
    EXPECT_EQ(KeywordOf(kWatch, "Period"), Is(""));
    EXPECT_EQ(QualifierOf(kWatch, "Threshold.Failures", "Type"), Is("Integer"));
    EXPECT_EQ(QualifierOf(kWatch, "Threshold.Failures", "Min"), Is("0"));
    EXPECT_EQ(QualifierOf(kWatch, "Threshold.Failures", "Max"), Is("100"));
    EXPECT_EQ(QualifierOf(kWatch, "Threshold.WindowSeconds", "Min"), Is("1"));
    EXPECT_EQ(QualifierOf(kWatch, "Threshold.WindowSeconds", "Max"), Is("604800"));
    EXPECT_EQ(QualifierOf(kWatch, "Period", "Type"), Is("String"));
}

TEST_F(WatchSettings, RefuseWhatTheirQualifiersForbid) {
    for (const char* value : {"", "-1", "101", "3x", "+3", " 3", "0x3", "99999999999999999999"}) {
        EXPECT_EQ(Change(kWatch, "Threshold.Failures", value), OAMERR_SET_BOARD_KEYWORD_FAIL)
            << value;
    }
    EXPECT_EQ(Change(kWatch, "Threshold.WindowSeconds", "0"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(Change(kWatch, "Period", "<new>"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(KeywordOf(kWatch, "Threshold.Failures"), Is("3"));
}

TEST_F(WatchSettings, KeepTheNameAndTheirQualifiers) {
    EXPECT_EQ(Change(kWatch, "Name", "other.emc"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Change(kWatch, "Threshold.Failures?Max", "9999"), OAMERR_ACCESS_DENIED);
}

TEST_F(WatchSettings, DoNotGrowWithoutProviderMode) {
    EXPECT_EQ(Change(kWatch, "Threshold.Unheard", "1"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Change(kWatch, "Bad<name", "1"), OAMERR_SET_BOARD_KEYWORD_FAIL);
}

TEST_F(WatchSettings, OutliveARestart) {
    ASSERT_EQ(Change(kWatch, "Threshold.Failures", "007"), OAM_SUCCESS);
    ASSERT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf(kWatch, "Threshold.Failures"), Is("7"));
    for (int i = 0; i < 6; ++i) Fail();
    EXPECT_THAT(Warnings(), IsEmpty());
    Fail();
    EXPECT_EQ(Warnings().size(), 1u);
}

TEST_F(WatchSettings, ForgetAllCountsInANewPeriod) {
    Fail();
    ASSERT_EQ(Change(kWatch, "Period", "after the repair"), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf(kWatch, "Period"), Is("after the repair"));
    EXPECT_THAT(Names(), IsEmpty());
    Succeed();
    EXPECT_EQ(Of(kBoard, "Starts.Failed"), Is("0"));
}

TEST_F(WatchSettings, ForgetNothingInTheSamePeriod) {
    ASSERT_EQ(Change(kWatch, "Period", "today"), OAM_SUCCESS);
    Fail();
    ASSERT_EQ(Change(kWatch, "Period", "today"), OAM_SUCCESS);
    ASSERT_EQ(Change(kWatch, "Threshold.Failures", "9"), OAM_SUCCESS);
    EXPECT_EQ(Of(kBoard, "Starts.Failed"), Is("1"));
}

class SpoiledWatchSettings : public ServiceTest {};

TEST_F(SpoiledWatchSettings, AreRepairedAndTold) {
    std::filesystem::copy_file(WATCH_COMPONENT_FILE, home.Path("lib/watch.emc"));
    auto entries = StandardEntries(kWatch);
    entries.emplace_back("Threshold.Failures", "many");
    entries.emplace_back("Threshold.WindowSeconds", "60");
    home.WriteDataFile("watch.xmo", DataFile(kWatch, entries));
    Start();
    EXPECT_EQ(KeywordOf(kWatch, "Threshold.Failures"), Is("3"));
    EXPECT_EQ(KeywordOf(kWatch, "Threshold.WindowSeconds"), Is("60"));
    EXPECT_THAT(alerts.HeardFrom(kWatch),
                ::testing::Contains(Said{OAMEVN_ALERT, OAM_ERROR, kWatch,
                                         "\"Threshold.Failures\" was \"many\" and is now \"3\"."}));
}

}  // namespace
}  // namespace oam::test
