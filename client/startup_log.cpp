#include "startup_log.h"

#include <sys/stat.h>

#include <deque>
#include <sstream>
#include <utility>

#include "file_content.h"
#include "oam/codes.h"
#include "zol/zol.h"

namespace oam {
namespace {

constexpr size_t kMostLines = 10;

// A line reads "source(severity): text".
bool hasSeverity(const std::string& line, char letter) {
    const size_t open = line.find('(');
    return open != std::string::npos && line.compare(open + 1, 3, {letter, ')', ':'}) == 0;
}

// What _oamInit answers when a plug-in or component cannot be loaded at all.
constexpr unsigned kCannotLoad = 0xf0027;

struct AdviceRow {
    unsigned code;
    const char* advice;
};

constexpr AdviceRow kAdvice[] = {
    {OAMERR_NOT_ENOUGH_MEMORY, "a path is longer than 127 characters; `oam check` names it"},
    {OAMERR_FILE_READ_ERROR, "a data file cannot be opened; `oam check` names it"},
    {OAMERR_FILE_WRITE_ERROR, "oam/cfg cannot be written: look at its owner and free space"},
    {OAMERR_ALREADY_EXISTS,
     "two boards with one number, or two plug-ins with one product; `oam check` finds the boards"},
    {kCannotLoad, "the library named above cannot be loaded; `ldd` tells what it lacks"},
    {ZOL_NO_SYMBOL, "the library named above is no complete plug-in or component; take it out"},
};

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

std::string StartAdvice(unsigned code) {
    for (const AdviceRow& row : kAdvice)
        if (row.code == code) return row.advice;
    return "`oam check` looks for the reason; the whole start-up log is oam/log/startup.log";
}

}  // namespace oam
