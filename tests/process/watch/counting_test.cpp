// Counts of operations and alerts, and how they follow the boards.
#include <regex>

#include "watch_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class WatchCounts : public WatchTest {
  protected:
    void Answer(unsigned code) {
        recorder.Script(kPlugin, [code](ModuleScript& script) {
            script.startBoard = [code](const char*) { return code; };
            script.stopBoard = [code](const char*) { return code; };
        });
    }
    static std::vector<std::string> Numbers(const std::string& board = kBoard) {
        std::vector<std::string> numbers;
        for (const char* member : {"Starts.Succeeded", "Starts.Failed", "Stops.Succeeded",
                                   "Stops.Failed", "Tests.Succeeded", "Tests.Failed"}) {
            numbers.push_back(Of(board, member).text);
        }
        return numbers;
    }
};

TEST_F(WatchCounts, FollowWhatTheServiceReportsOfItsOperations) {
    EXPECT_EQ(_oamStartBoard(kBoard, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(_oamStartBoard(kBoard, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(_oamStopBoard(kBoard, OAM_SYNCHRONIZED), OAM_SUCCESS);
    Answer(1);
    EXPECT_EQ(_oamStartBoard(kBoard, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(_oamStopBoard(kBoard, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(_oamTestBoard(kBoard, 0), OAM_SUCCESS);
    ASSERT_TRUE(alerts.WaitForCode(OAMEVN_TESTBOARD_DONE));
    EXPECT_THAT(Numbers(), ElementsAre("2", "1", "1", "1", "1", "0"));
}

TEST_F(WatchCounts, TellFailedTestsFromSuccessfulOnes) {
    Succeed(kBoard, OAMEVN_TESTBOARD_DONE);
    Fail(kBoard, OAMEVN_TESTBOARD_DONE);
    Fail(kBoard, OAMEVN_TESTBOARD_DONE);
    EXPECT_THAT(Numbers(), ElementsAre("0", "0", "0", "0", "1", "2"));
}

TEST_F(WatchCounts, KeepTheLastOutcome) {
    EXPECT_EQ(Of(kBoard, "Last.Code"), Is(""));
    EXPECT_EQ(Of(kBoard, "Last.Time"), Is(""));
    Fail();
    EXPECT_EQ(Of(kBoard, "Last.Code"), Is("OAMEVN_STARTBOARD_DONE"));
    EXPECT_EQ(Of(kBoard, "Last.Text"), Is("Failed to start board."));
    EXPECT_EQ(Of(kBoard, "Last.Severity"), Is("Error"));
    EXPECT_TRUE(std::regex_match(Of(kBoard, "Last.Time").text,
                                 std::regex(R"(20\d\d-\d\d-\d\dT\d\d:\d\d:\d\dZ)")));
    Succeed(kBoard, OAMEVN_STOPBOARD_DONE);
    EXPECT_EQ(Raise(OAMEVN_ALERT, OAM_ERROR, kBoard, "no outcome"), OAM_SUCCESS);
    EXPECT_EQ(Of(kBoard, "Last.Code"), Is("OAMEVN_STOPBOARD_DONE"));
    EXPECT_EQ(Of(kBoard, "Last.Severity"), Is("Information"));
}

TEST_F(WatchCounts, TakeOtherAlertsBySeverity) {
    const auto before = std::stoi(Of(kBoard, "Alerts.Information").text);
    EXPECT_EQ(Raise(OAMEVN_ALERT, OAM_INFORMATION, kBoard, "text"), OAM_SUCCESS);
    EXPECT_EQ(Raise(OAMEVN_TEMPERATURE_WARNING, OAM_WARNING, kBoard, "text"), OAM_SUCCESS);
    EXPECT_EQ(Raise(OAMEVN_BOARD_DEAD, OAM_ERROR, kBoard, "text"), OAM_SUCCESS);
    EXPECT_EQ(Raise(OAMEVN_ALERT, 77, kBoard, "text"), OAM_SUCCESS);
    EXPECT_EQ(Of(kBoard, "Alerts.Information"), Is(std::to_string(before + 1)));
    EXPECT_EQ(Of(kBoard, "Alerts.Warning"), Is("1"));
    EXPECT_EQ(Of(kBoard, "Alerts.Error"), Is("2"));
}

TEST_F(WatchCounts, LeaveOutSourcesThatAreNoBoards) {
    EXPECT_EQ(Raise(OAMEVN_ALERT, OAM_ERROR, "Config", "text"), OAM_SUCCESS);
    EXPECT_EQ(Raise(OAMEVN_STARTBOARD_DONE, OAM_ERROR, "nobody", "text"), OAM_SUCCESS);
    EXPECT_EQ(Raise(OAMEVN_ALERT, OAM_ERROR, "", "text"), OAM_SUCCESS);
    EXPECT_EQ(Raise(OAMEVN_ALERT, OAM_ERROR, std::string(5000, 'x'), "text"), OAM_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre(kBoard));
}

TEST_F(WatchCounts, AreOneForAllSpellingsOfAName) {
    Succeed("CARD 0");
    EXPECT_EQ(Of(kBoard, "Starts.Succeeded"), Is("1"));
}

TEST_F(WatchCounts, MoveWithARenamedBoard) {
    Fail();
    ASSERT_EQ(Change(kBoard, "Name", "Left"), OAM_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre("Left"));
    Fail("Left");
    EXPECT_EQ(Of("Left", "Starts.Failed"), Is("2"));
    ASSERT_EQ(CreateBoard("Card"), kBoard);
    EXPECT_EQ(Of(kBoard, "Starts.Failed"), Is("0"));
}

TEST_F(WatchCounts, KeepTheirBoardWhenItsNameChangesCase) {
    Fail();
    ASSERT_EQ(Change(kBoard, "Name", "CARD 0"), OAM_SUCCESS);
    EXPECT_EQ(Of("CARD 0", "Starts.Failed"), Is("1"));
}

TEST_F(WatchCounts, EndWithADeletedBoard) {
    Fail();
    ASSERT_EQ(_oamDeleteBoard(kBoard), OAM_SUCCESS);
    EXPECT_THAT(Names(), IsEmpty());
    ASSERT_EQ(CreateBoard("Card"), kBoard);
    EXPECT_EQ(Of(kBoard, "Starts.Failed"), Is("0"));
}

TEST_F(WatchCounts, HoldAReadersBoardsInPlaceUntilItCountsAgain) {
    const unsigned long handle = Open(kWatch);
    ASSERT_EQ(GetKeyword(handle, "Boards.Count"), Is("1"));
    ASSERT_EQ(CreateBoard("Card"), "Card 1");
    ASSERT_EQ(Change("Card 1", "Name", "A first one"), OAM_SUCCESS);
    Fail();
    EXPECT_EQ(Element(handle, 0, "Name"), Is(kBoard));
    EXPECT_EQ(Element(handle, 0, "Starts.Failed"), Is("1"));
    EXPECT_EQ(Element(handle, 1, "Name"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(GetKeyword(handle, "Boards.Count"), Is("2"));
    EXPECT_EQ(Element(handle, 0, "Name"), Is("A first one"));
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_F(WatchCounts, OfABoardThatGoesWhileTheyAreReadAreNotFound) {
    const unsigned long handle = Open(kWatch);
    ASSERT_EQ(Element(handle, 0, "Name"), Is(kBoard));
    ASSERT_EQ(_oamDeleteBoard(kBoard), OAM_SUCCESS);
    EXPECT_EQ(Element(handle, 0, "Name"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_F(WatchCounts, AreAnsweredByTheServicesRuleForTexts) {
    const unsigned long handle = Open(kWatch);
    char buffer[8] = "before";
    EXPECT_EQ(_oamGetKeyword(handle, "Boards[0].Name", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(_oamGetKeyword(handle, "Boards[0].Name", buffer, 6), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "before");
    EXPECT_EQ(_oamGetKeyword(handle, "boards[0].NAME", buffer, 7), OAM_SUCCESS);
    EXPECT_STREQ(buffer, kBoard);
    for (const char* wrong : {"Boards", "Boards[0]", "Boards[00].Name", "Boards[-1].Name",
                              "Boards[0]Name", "Boards[0].Nam", "Boards[99999999999].Name"}) {
        EXPECT_EQ(GetKeyword(handle, wrong), Fails(OAMERR_NOT_FOUND)) << wrong;
    }
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_F(WatchCounts, AreFoundThroughQualifiers) {
    EXPECT_EQ(QualifierOf(kWatch, "", "Keywords.Count"), Is("1"));
    EXPECT_EQ(QualifierOf(kWatch, "", "Keywords[0]"), Is("Boards"));
    EXPECT_EQ(QualifierOf(kWatch, "Boards", "Type"), Is("Array"));
    EXPECT_EQ(QualifierOf(kWatch, "Boards.Count", "Type"), Is("Integer"));
    EXPECT_EQ(QualifierOf(kWatch, "Boards[0]", "Type"), Is("Struct"));
    EXPECT_EQ(QualifierOf(kWatch, "Boards[0]", "Keywords.Count"), Is("14"));
    EXPECT_EQ(QualifierOf(kWatch, "Boards[0]", "Keywords[1]"), Is("Boards[0].Starts.Succeeded"));
    EXPECT_EQ(QualifierOf(kWatch, "Boards[0].Starts.Succeeded", "Type"), Is("Integer"));
    EXPECT_EQ(QualifierOf(kWatch, "Boards[0].Starts.Succeeded", "Description"),
              Is("starts that succeeded"));
    for (const char* keyword : {"Boards", "Boards.Count", "Boards[0]", "Boards[0].Last.Text"}) {
        EXPECT_EQ(QualifierOf(kWatch, keyword, "ReadOnly"), Is("Yes")) << keyword;
    }
    EXPECT_EQ(QualifierOf(kWatch, "Boards[1]", "ReadOnly"), Is("No")) << "no such board";
}

TEST_F(WatchCounts, AreNobodysToChange) {
    for (const char* keyword : {"Boards.Count", "Boards[0].Starts.Failed", "Boards[0].New"}) {
        EXPECT_EQ(Change(kWatch, keyword, "0"), OAMERR_ACCESS_DENIED) << keyword;
    }
}

}  // namespace
}  // namespace oam::test
