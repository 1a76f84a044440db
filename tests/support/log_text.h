// Reading the service's logs apart from the time of day.
#pragma once

#include <string>

namespace oam::test {

// Every time stamp that stands before " - " (weekday, month, day and time, no year) becomes STAMP.
std::string WithoutStamps(const std::string& log);

constexpr const char* kLoggingStart = "STAMP - Logging start\n";
constexpr const char* kLoggingStop = "STAMP - Logging stop\n";

// A plain line of the log: "<source>(<letter>): <text>" and a line feed.
std::string LogLine(const std::string& source, char severity, const std::string& text);

// The start-up line about a file that lies there now: path, size and modification time.
std::string LoadingText(const std::string& path);

// The four stages of a start as the log announces them, and their confirmation.
extern const char* const kStageBanners[4];
constexpr const char* kStageDone = "\t\t\t\t\tDONE";
// Banner and confirmation of one stage (0 to 3) with what the stage wrote in between.
std::string StageLog(int stage, const std::string& between = {});
// A complete start-up log; the texts are what each stage wrote.
std::string StartupLog(const std::string& config = {}, const std::string& components = {},
                       const std::string& plugins = {});

}  // namespace oam::test
