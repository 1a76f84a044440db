#include "startup_log.h"

#include <sys/stat.h>

#include <deque>
#include <sstream>
#include <utility>

#include "file_content.h"

namespace oam {
namespace {

constexpr size_t kMostLines = 10;

// A line reads "source(severity): text".
bool hasSeverity(const std::string& line, char letter) {
    const size_t open = line.find('(');
    return open != std::string::npos && line.compare(open + 1, 3, {letter, ')', ':'}) == 0;
}

}  // namespace

std::vector<std::string> StartupErrors(const std::string& path, time_t since) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || status.st_mtime < since) return {};
    std::istringstream log(LoadFile(path).content);
    std::deque<std::string> errors;
    std::string loading;
    for (std::string line; std::getline(log, line);) {
        if (line.find("=> Loading ") != std::string::npos) loading = line;
        if (line.ends_with(" DONE")) loading.clear();
        if (!hasSeverity(line, 'E')) continue;
        if (!loading.empty()) errors.push_back(std::exchange(loading, {}));
        errors.push_back(line);
        while (errors.size() > kMostLines) errors.pop_front();
    }
    return {errors.begin(), errors.end()};
}

}  // namespace oam
