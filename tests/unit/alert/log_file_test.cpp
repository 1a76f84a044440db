// The log stream: its backup, its first and last line, and its failures.
#include "alert/log_file.h"

#include <sys/stat.h>

#include <regex>

#include "alert_room.h"
#include "support/file_limit.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AlertLog : public AlertRoom {
  protected:
    oam_result Begin(const std::string& relative) {
        return AlertLogFileBeg(home.Path(relative).c_str());
    }
    // Opens and closes a log that had a content before; answers the names of its directory.
    std::vector<std::string> NamesAfter(const std::string& directory, const std::string& file) {
        home.MakeDirectory(directory);
        home.Write(directory + "/" + file, "old");
        EXPECT_EQ(Begin(directory + "/" + file), OAM_SUCCESS);
        EXPECT_EQ(AlertLogFileEnd(), OAM_SUCCESS);
        return home.List(directory);
    }
};

TEST_F(AlertLog, StartsAndStopsWithALine) {
    OpenLog();
    EXPECT_EQ(Log(), kLoggingStart) << "also before it is closed";
    EXPECT_EQ(AlertLogFileEnd(), OAM_SUCCESS);
    EXPECT_EQ(Log(), std::string(kLoggingStart) + kLoggingStop);
}

TEST_F(AlertLog, BackupHasTheExtensionReplaced) {
    EXPECT_THAT(NamesAfter("log", "trace.old.log"), ElementsAre("trace.old.bak", "trace.old.log"));
    EXPECT_EQ(home.Read("log/trace.old.bak"), "old");
}

TEST_F(AlertLog, BackupOfANameWithoutExtensionGetsOne) {
    EXPECT_THAT(NamesAfter("log", "trace"), ElementsAre("trace", "trace.bak"));
}

TEST_F(AlertLog, DotInADirectoryNameDoesNotCount) {
    EXPECT_THAT(NamesAfter("a.b/oam/log", "startup"), ElementsAre("startup", "startup.bak"));
    EXPECT_EQ(home.Read("a.b/oam/log/startup.bak"), "old");
}

TEST_F(AlertLog, NameThatEndsInADotLosesNothing) {
    EXPECT_THAT(NamesAfter("log", "trace."), ElementsAre("trace.", "trace.bak"));
}

TEST_F(AlertLog, KeepsExactlyOneGeneration) {
    for (const char* content : {"first", "second"}) {
        home.Write("oam/log/test.log", content);
        OpenLog();
        EXPECT_EQ(AlertLogFileEnd(), OAM_SUCCESS);
        EXPECT_EQ(home.Read("oam/log/test.bak"), content);
    }
    EXPECT_THAT(home.List("oam/log"), ElementsAre("test.bak", "test.log"));
}

TEST_F(AlertLog, PathWithoutAnySlashIsAFileHere) {
    const std::string before = std::filesystem::current_path();
    std::filesystem::current_path(home.Path("oam/log"));
    home.Write("oam/log/plain.x", "old");
    EXPECT_EQ(AlertLogFileBeg("plain.x"), OAM_SUCCESS);
    EXPECT_EQ(AlertLogFileEnd(), OAM_SUCCESS);
    std::filesystem::current_path(before);
    EXPECT_THAT(home.List("oam/log"), ElementsAre("plain.bak", "plain.x"));
}

TEST_F(AlertLog, IsOneAtATime) {
    OpenLog();
    home.Write("oam/log/other.log", "old");
    EXPECT_EQ(Begin("oam/log/other.log"), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(home.List("oam/log"), ElementsAre("other.log", "test.log")) << "nothing changed";
    EXPECT_EQ(home.Read("oam/log/other.log"), "old");
}

TEST_F(AlertLog, ThatCannotBeMadeIsAWriteError) {
    EXPECT_EQ(Begin("nowhere/test.log"), OAMERR_FILE_WRITE_ERROR);
    EXPECT_EQ(AlertLogFileEnd(), OAMERR_NOT_FOUND);
}

TEST_F(AlertLog, PathIsLimitedTo259CharactersWithItsBackup) {
    const std::string directory = home.Path("oam/log/");
    const std::string longest(255 - directory.size(), 'x');
    EXPECT_EQ(AlertLogFileBeg((directory + longest).c_str()), OAM_SUCCESS);
    EXPECT_EQ(AlertLogFileEnd(), OAM_SUCCESS);
    EXPECT_EQ(AlertLogFileBeg((directory + longest + "x").c_str()), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(AlertLogFileEnd(), OAMERR_NOT_FOUND);
}

TEST_F(AlertLog, NothingOpenCannotBeClosed) { EXPECT_EQ(AlertLogFileEnd(), OAMERR_NOT_FOUND); }

TEST_F(AlertLog, FailedCloseClosesAllTheSame) {
    OpenLog();
    {
        const FileSizeLimit limit(home.Read("oam/log/test.log").size());
        EXPECT_EQ(AlertLogFileEnd(), OAMERR_FILE_WRITE_ERROR);
    }
    EXPECT_EQ(AlertLogFileEnd(), OAMERR_NOT_FOUND);
    OpenLog();
}

TEST_F(AlertLog, WritingWithoutALogIsNoFailure) {
    bool called = false;
    EXPECT_EQ(alertLog().Write([&](::LogStream&) {
        called = true;
        return OAMERR_FILE_WRITE_ERROR;
    }),
              OAM_SUCCESS);
    EXPECT_FALSE(called);
    EXPECT_FALSE(alertLog().IsOpen());
}

TEST_F(AlertLog, OutlivesTheAlertSystem) {
    OpenLog();
    EXPECT_EQ(AlertInit(), OAM_SUCCESS);
    AlertExit();
    EXPECT_TRUE(alertLog().IsOpen());
    EXPECT_EQ(Raise("after the end"), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(Log(), kLoggingStart + LogLine("S", 'I', "after the end"));
}

TEST(TimeStamp, HasWeekdayMonthDayAndTimeOnly) {
    const std::regex form("[A-Z][a-z]{2} [A-Z][a-z]{2} [ 0-9][0-9] [0-9]{2}:[0-9]{2}:[0-9]{2}");
    EXPECT_TRUE(std::regex_match(TimeStamp().text, form)) << TimeStamp().text;
}

class PlainLine : public AlertRoom {};

TEST_F(PlainLine, HasSourceSeverityLetterAndText) {
    OpenLog();
    for (unsigned severity : {0u, 1u, 2u, 7u}) {
        EXPECT_EQ(Raise(OAMEVN_ALERT, severity, "Src", "100%s"), OAMERR_SERVER_NOT_RUNNING);
    }
    EXPECT_EQ(Log(), kLoggingStart + LogLine("Src", 'I', "100%s") + LogLine("Src", 'W', "100%s") +
                         LogLine("Src", 'E', "100%s") + LogLine("Src", 'E', "100%s"));
}

TEST_F(PlainLine, IsWrittenForEveryCode) {
    OpenLog();
    for (unsigned code : {OAMEVN_REPORT, OAMEVN_MODIFIED, OAMEVN_TRACE, OAMEVN_STOPBOARD_DONE}) {
        EXPECT_EQ(Raise(code, 0, "S", "T"), OAMERR_SERVER_NOT_RUNNING);
    }
    const std::string line = LogLine("S", 'I', "T");
    EXPECT_EQ(Log(), kLoggingStart + line + line + line + line);
}

TEST_F(PlainLine, ThatCannotBeWrittenIsAWriteError) {
    OpenLog();
    EXPECT_EQ(AlertInit(), OAM_SUCCESS);
    InstallCallback();
    {
        const FileSizeLimit limit(home.Read("oam/log/test.log").size());
        EXPECT_EQ(Raise("lost"), OAMERR_FILE_WRITE_ERROR);
    }
    EXPECT_THAT(doors.CallsOf({"callback"}), ElementsAre("callback(4294967295, lost)"))
        << "delivered all the same";
}

TEST_F(PlainLine, FailureGivesWayToALaterOne) {
    OpenLog();
    const FileSizeLimit limit(home.Read("oam/log/test.log").size());
    EXPECT_EQ(Raise("lost"), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(AlertInit(), OAM_SUCCESS);
    InstallCallback();
    doors.Answer("callback", oam_result(9));
    EXPECT_EQ(Raise("lost"), oam_result(9));
}

}  // namespace
}  // namespace oam::test
