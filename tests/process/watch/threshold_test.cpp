// The alert about a board that keeps failing.
#include "watch_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class WatchThreshold : public WatchTest {
  protected:
    void SetUp() override {
        WatchTest::SetUp();
        Limit("2");
    }
    static void Limit(const std::string& failures) {
        ASSERT_EQ(Change(kWatch, "Threshold.Failures", failures), OAM_SUCCESS);
    }
};

TEST_F(WatchThreshold, IsTold) {
    Fail();
    EXPECT_THAT(Warnings(), IsEmpty());
    Fail();
    EXPECT_THAT(Warnings(), ElementsAre(Said{kTooManyFailures, OAM_ERROR, kBoard,
                                             "2 operations failed within 600 seconds; the last: "
                                             "Failed to start board."}));
}

TEST_F(WatchThreshold, IsToldOnceForEachCrossing) {
    for (int i = 0; i < 5; ++i) Fail();
    EXPECT_THAT(Warnings(), SizeIs(1));
}

TEST_F(WatchThreshold, IsReachedByOperationsOfAllKinds) {
    Fail(kBoard, OAMEVN_STOPBOARD_DONE);
    Fail(kBoard, OAMEVN_TESTBOARD_DONE);
    EXPECT_THAT(Warnings(), SizeIs(1));
}

TEST_F(WatchThreshold, IsNotReachedByOtherErrors) {
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(Raise(OAMEVN_BOARD_DEAD, OAM_ERROR, kBoard, "text"), OAM_SUCCESS);
        Succeed();
    }
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WatchThreshold, IsEachBoardsOwn) {
    ASSERT_EQ(CreateBoard("Card"), "Card 1");
    Fail();
    Fail("Card 1");
    EXPECT_THAT(Warnings(), IsEmpty());
    Fail("Card 1");
    EXPECT_THAT(Warnings(), SizeIs(1));
}

TEST_F(WatchThreshold, FollowsARenamedBoard) {
    Fail();
    ASSERT_EQ(Change(kBoard, "Name", "Left"), OAM_SUCCESS);
    Fail("Left");
    EXPECT_THAT(Warnings(), SizeIs(1));
}

TEST_F(WatchThreshold, CanBeTakenAway) {
    Limit("0");
    for (int i = 0; i < 5; ++i) Fail();
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WatchThreshold, IsInForceFromTheChangeOn) {
    Limit("3");
    Fail();
    Fail();
    EXPECT_THAT(Warnings(), IsEmpty());
    Fail();
    EXPECT_THAT(Warnings(), SizeIs(1));
}

TEST_F(WatchThreshold, StaysAsItWasWhenAChangeIsRefused) {
    const unsigned long handle = Open(kWatch, kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "Threshold.Failures", "101"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    Fail();
    Fail();
    EXPECT_THAT(Warnings(), SizeIs(1));
}

TEST_F(WatchThreshold, BeginsAnewInANewPeriod) {
    Fail();
    ASSERT_EQ(Change(kWatch, "Period", "new"), OAM_SUCCESS);
    Fail();
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WatchThreshold, AlertIsNotCountedWhenItComesBack) {
    Fail();
    Fail();
    ASSERT_THAT(Warnings(), SizeIs(1));
    EXPECT_EQ(Of(kBoard, "Alerts.Error"), Is("0"));
    EXPECT_EQ(Of(kBoard, "Starts.Failed"), Is("2"));
    EXPECT_EQ(Of(kBoard, "Last.Code"), Is("OAMEVN_STARTBOARD_DONE"));
}

TEST_F(WatchThreshold, AlertHasAName) {
    EXPECT_STREQ(_oamGetText(kTooManyFailures), "WATCH_TOO_MANY_FAILURES");
    EXPECT_EQ(_oamGetText(kTooManyFailures + 1), nullptr);
}

}  // namespace
}  // namespace oam::test
