#include "support/log_text.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <ctime>
#include <regex>

namespace oam::test {

const char* const kStageBanners[4] = {
    "*********************************\n"
    "            Initialize Alert System\n"
    "            *********************************",
    "*********************************\n"
    "            Initialize XMO File\n"
    "            *********************************",
    "*********************************\n"
    "            Initialize EMC Components\n"
    "            *********************************",
    "*********************************\n"
    "            Initializing Plug-in Components\n"
    "            *********************************"};

std::string WithoutStamps(const std::string& log) {
    static const std::regex kStamp(
        "(Sun|Mon|Tue|Wed|Thu|Fri|Sat) "
        "(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
        "[ 123][0-9] [012][0-9]:[0-5][0-9]:[0-6][0-9] - ");
    return std::regex_replace(log, kStamp, "STAMP - ");
}

std::string LogLine(const std::string& source, char severity, const std::string& text) {
    return source + "(" + severity + "): " + text + "\n";
}

std::string LoadingText(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    char date[32] = "";
    EXPECT_NE(ctime_r(&status.st_mtime, date), nullptr);
    char text[512];
    std::snprintf(text, sizeof text, "=> Loading %s (%ld %.24s)  ", path.c_str(),
                  static_cast<long>(status.st_size), date);
    return text;
}

std::string StageLog(int stage, const std::string& between) {
    return LogLine("DllMain", 'I', kStageBanners[stage]) + between +
           LogLine("DllMain", 'I', kStageDone);
}

std::string StartupLog(const std::string& config, const std::string& components,
                       const std::string& plugins) {
    return kLoggingStart + StageLog(0) + StageLog(1, config) + StageLog(2, components) +
           StageLog(3, plugins) + kLoggingStop;
}

}  // namespace oam::test
