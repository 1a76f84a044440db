// The frame of the board queries, and what only the table itself shows of them.
#include "board_room.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Queries : public BoardRoom {
  protected:
    Queries() {
        AddBoard("Board", 7, AddPlugin(), [](BoardValues& values) {
            EXPECT_TRUE(values.driverName.Assign("Driver"));
            EXPECT_TRUE(values.driverBoardId.Assign("Identifier"));
        });
        SetOamIsRunning(true);
    }
    char first[16] = "before";
    char second[16] = "before";
};

TEST_F(Queries, AreRefusedWhileTheServiceDoesNotRun) {
    SetOamIsRunning(false);
    unsigned number = 42;
    int status = 42;
    EXPECT_EQ(_oamBoardGetNumber("Board", &number), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(_oamBoardEnum(0, first, sizeof first), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(_oamSendBuffer("Board", "x", 1), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(_oamBoardGetStatus("Board", 0, &status), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(_oamDetectBoards(), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(number, 42u);
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Queries, DoNotAskWhetherBoardCommunicationRuns) {
    unsigned number = 0;
    EXPECT_FALSE(isOpenForRequests());
    EXPECT_EQ(_oamBoardGetNumber("board", &number), OAM_SUCCESS);
    EXPECT_EQ(number, 7u);
}

TEST_F(Queries, GiveTheTableBackWhateverTheResult) {
    EXPECT_EQ(_oamBoardLookupByNumber(7, first, 5), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(_oamBoardLookupByNumber(8, first, 6), OAMERR_NOT_FOUND);
    EXPECT_EQ(TableMutex::Depth(), 0);
    EXPECT_STREQ(first, "before");
    EXPECT_EQ(_oamBoardLookupByNumber(7, first, 6), OAM_SUCCESS);
    EXPECT_STREQ(first, "Board");
}

TEST_F(Queries, SecondTextThatDoesNotFitComesAfterTheFirstIsCopied) {
    EXPECT_EQ(_oamBoardGetDriverIDs("Board", first, 6, second, sizeof second),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(first, "before");
    EXPECT_EQ(_oamBoardGetDriverIDs("Board", first, 7, second, 10), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(first, "Driver");
    EXPECT_STREQ(second, "before");
    EXPECT_EQ(_oamBoardGetDriverIDs("Board", first, 7, second, 11), OAM_SUCCESS);
    EXPECT_STREQ(second, "Identifier");
}

TEST_F(Queries, KeptSettersChangeTheRecordOnly) {
    char texts[2][OAM_MAC_TEXT_SIZE] = {"aa", "bb"};
    EXPECT_EQ(_oamBoardSetShelfSlot("Board", 3, 4), OAM_SUCCESS);
    EXPECT_EQ(_oamBoardSetMACAddress("Board", texts, 2), OAM_SUCCESS);
    EXPECT_EQ(Board("Board").values.cpciShelf, 3u);
    EXPECT_EQ(Board("Board").values.cpciSlot, 4u);
    EXPECT_EQ(Board("Board").values.macAddressCount, 2u);
    EXPECT_EQ(_oamBoardResetMACAddressCount("Board"), OAM_SUCCESS);
    EXPECT_EQ(Board("Board").values.macAddressCount, 0u);
    EXPECT_EQ(_oamBoardSetMACAddress("Board", nullptr, 1), OAMERR_NOT_FOUND);
    EXPECT_THAT(doors.Calls(), IsEmpty()) << "neither database nor shadow";
}

TEST_F(Queries, MarkNeedsTheSettingAndTheBoard) {
    for (int i = 0; i < 4; ++i) {
        g_bAutoStartEnabled = g_bAutoStopEnabled = (i & 1) != 0;
        Board("Board").values.autoStart = Board("Board").values.autoStop = (i & 2) != 0;
        unsigned start = 42;
        unsigned stop = 42;
        EXPECT_EQ(_oamBoardGetAutoStartEnabled("Board", &start), OAM_SUCCESS);
        EXPECT_EQ(_oamBoardGetAutoStopEnabled("Board", &stop), OAM_SUCCESS);
        EXPECT_EQ(start, i == 3 ? 1u : 0u);
        EXPECT_EQ(stop, i == 3 ? 1u : 0u);
    }
}

TEST_F(Queries, NullPlaceOnlyAsks) {
    EXPECT_EQ(_oamBoardGetNumber("Board", nullptr), OAM_SUCCESS);
    EXPECT_EQ(_oamBoardGetBusSlot("Board", nullptr, nullptr), OAM_SUCCESS);
    EXPECT_EQ(_oamBoardGetShelfSlot("None", nullptr, nullptr), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamBoardGetProduct("Board", nullptr, 0), OAM_SUCCESS);
}

TEST_F(Queries, PassOnWithNoLockHeld) {
    int status = 0;
    doors.On("p1.GetBoardStatus", [] {
        EXPECT_FALSE(HoldsDatabaseLock());
        return oam_result(0x99);
    });
    EXPECT_EQ(_oamBoardGetStatus("board", 5, &status), oam_result(0x99));
    EXPECT_EQ(status, 42);
    EXPECT_EQ(_oamSendBuffer("board", "xyz", 3), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(), ElementsAre("p1.GetBoardStatus(board, 5)", "p1.SendBuffer(board, 3)"));
}

}  // namespace
}  // namespace oam::test
