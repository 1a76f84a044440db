// The board-trace form of the log.
#include "alert/board_trace.h"

#include "alert_room.h"
#include "support/file_limit.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

class BoardTrace : public AlertRoom {
  protected:
    BoardTrace() {
        g_bOammonLog = true;
        FrameDoor::The().texts = {{OAMEVN_STARTBOARD_DONE, "OAMEVN_STARTBOARD_DONE"},
                                  {OAMEVN_ALERT, "OAMEVN_ALERT"}};
        doors.Answer("_oamBoardGetNumber", OAMERR_NOT_FOUND);
        EXPECT_EQ(AlertLogFileBeg(logPath.c_str()), OAM_SUCCESS);
        EXPECT_EQ(AlertInit(), OAM_SUCCESS);
    }
    // The log of one alert, without the start line.
    std::string Written(unsigned code, unsigned severity, const std::string& text) {
        EXPECT_EQ(Raise(code, severity, "B3", text), OAM_SUCCESS);
        const std::string log = Log();
        return log.substr(std::string(kLoggingStart).size());
    }
};

TEST_F(BoardTrace, RecordOfABoardHasItsNumber) {
    doors.Answer("_oamBoardGetNumber", OAM_SUCCESS);
    BoardDoor::The().number = 3;
    EXPECT_EQ(Written(OAMEVN_STARTBOARD_DONE, 2, "Failed to start board.\n"),
              "  <STAMP - OAMEVN_STARTBOARD_DONE ERROR  Board 3\"B3\">\nFailed to start board.\n\n");
    EXPECT_THAT(doors.CallsOf({"_oamBoardGetNumber"}), ElementsAre("_oamBoardGetNumber(B3)"));
}

TEST_F(BoardTrace, RecordOfAnotherSourceHasNone) {
    EXPECT_EQ(Written(OAMEVN_ALERT, 0, "text"), "  <STAMP - OAMEVN_ALERT INFO \"B3\">\ntext\n");
}

TEST_F(BoardTrace, AnyFailureOfTheNumberLeavesItOut) {
    doors.Answer("_oamBoardGetNumber", OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(Written(OAMEVN_ALERT, 0, "text"), "  <STAMP - OAMEVN_ALERT INFO \"B3\">\ntext\n");
}

TEST_F(BoardTrace, SeverityIsAWord) {
    EXPECT_THAT(Written(OAMEVN_ALERT, 1, "t"), HasSubstr(" WARNING \"B3\""));
    EXPECT_THAT(Written(OAMEVN_ALERT, 99, "t"), HasSubstr(" ERROR \"B3\""));
}

TEST_F(BoardTrace, CodeWithoutANameIsInHexadecimal) {
    EXPECT_EQ(Written(0x5a, 0, "t"), "  <STAMP - 0x0000005a INFO \"B3\">\nt\n");
}

TEST_F(BoardTrace, TraceIsItsBareText) {
    EXPECT_EQ(Written(OAMEVN_TRACE, 2, "bare 100%s"), "bare 100%s");
    EXPECT_THAT(doors.CallsOf({"_oamBoardGetNumber"}), IsEmpty());
}

TEST_F(BoardTrace, KeptFinishedStopsAreLeftOutWithChangesAndReports) {
    for (unsigned code : {OAMEVN_REPORT, OAMEVN_CREATED, OAMEVN_DELETED, OAMEVN_RENAMED,
                          OAMEVN_MODIFIED, OAMEVN_STOPBOARD_DONE}) {
        EXPECT_EQ(Written(code, 0, "t"), "") << std::hex << code;
    }
    EXPECT_THAT(Written(OAMEVN_TESTBOARD_DONE, 0, "t"), Not(IsEmpty()));
}

TEST_F(BoardTrace, LooksUpNumberAndNameBeforeItTakesTheLog) {
    // A look-up that itself raises an alert finds the log free.
    doors.On("_oamBoardGetNumber", [&] {
        doors.Answer("_oamBoardGetNumber", OAMERR_NOT_FOUND);
        return Raise(OAMEVN_TRACE, 0, "inner", "inner first;");
    });
    EXPECT_THAT(Written(OAMEVN_ALERT, 0, "outer"), StartsWith("inner first;  <STAMP - "));
}

TEST_F(BoardTrace, KeptFailedTextRewindsTheStream) {
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "S", std::string(100, 'x')), OAM_SUCCESS);
    {
        const FileSizeLimit limit(home.Read("oam/log/test.log").size());
        EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "S", std::string(1 << 20, 'y')), OAM_SUCCESS);
    }
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "S", "later"), OAM_SUCCESS);
    EXPECT_THAT(Log(), Not(StartsWith(kLoggingStart)));
}

TEST_F(BoardTrace, KeptFailedFlushRewindsTheStream) {
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "S", std::string(100, 'x')), OAM_SUCCESS);
    {
        const FileSizeLimit limit(home.Read("oam/log/test.log").size());
        EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "S", "short"), OAM_SUCCESS);
    }
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "S", "later"), OAM_SUCCESS);
    EXPECT_THAT(Log(), Not(StartsWith(kLoggingStart)));
}

TEST_F(BoardTrace, ClosedLogTakesNothing) {
    EXPECT_EQ(AlertLogFileEnd(), OAM_SUCCESS);
    const std::string before = home.Read("oam/log/test.log");
    const Message message(OAMEVN_ALERT, 0, "S", "T");
    FormatOammonLog(message.Get());
    EXPECT_EQ(writePlainLine(message.Get()), OAM_SUCCESS);
    EXPECT_EQ(home.Read("oam/log/test.log"), before);
}

}  // namespace
}  // namespace oam::test
