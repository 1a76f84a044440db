#include "module_log.h"

#include <dirent.h>
#include <gtest/gtest.h>

#include <cstdio>

namespace oam::test {

std::string LoadingLine(const std::string& source, const std::string& path) {
    return LogLine(source, 'I', LoadingText(path));
}

std::string DoneLine(const std::string& source, const std::string& file) {
    return LogLine(source, 'I', file + " DONE");
}

std::string FailedLine(const std::string& source, unsigned code) {
    char number[16];
    std::snprintf(number, sizeof number, "0x%x", code);
    return LogLine(source, 'E', std::string("!! FAILED !! (") + number + ")");
}

std::string StageLines(const std::string& log, int stage) {
    const std::string banner = LogLine("DllMain", 'I', kStageBanners[stage]);
    const size_t start = log.find(banner);
    EXPECT_NE(start, std::string::npos) << log;
    if (start == std::string::npos) return {};
    const std::string lines = WithoutStamps(log.substr(start + banner.size()));
    size_t end = lines.find(LogLine("DllMain", 'I', kStageDone));
    if (end == std::string::npos) end = lines.find(kLoggingStop);
    EXPECT_NE(end, std::string::npos) << log;
    return lines.substr(0, end);
}

std::vector<std::string> DirectoryOrder(const std::string& path) {
    std::vector<std::string> names;
    DIR* directory = opendir(path.c_str());
    EXPECT_NE(directory, nullptr) << path;
    if (directory == nullptr) return names;
    while (const dirent* entry = readdir(directory)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    closedir(directory);
    return names;
}

}  // namespace oam::test
