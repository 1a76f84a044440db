#include "metrics/process_figures.h"

#include <dirent.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>

namespace oam::server {
namespace {

std::size_t entriesOf(const char* directory) {
    DIR* const listing = opendir(directory);
    if (listing == nullptr) return 0;
    std::size_t entries = 0;
    while (const dirent* entry = readdir(listing)) entries += entry->d_name[0] != '.' ? 1 : 0;
    closedir(listing);
    return entries;
}

}  // namespace

ProcessFigures ReadProcessFigures() {
    ProcessFigures figures;
    timespec time{};
    if (clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time) == 0)
        figures.cpuSeconds =
            static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    if (FILE* const file = std::fopen("/proc/self/statm", "re")) {
        unsigned long size = 0, resident = 0;
        if (std::fscanf(file, "%lu %lu", &size, &resident) == 2)
            figures.residentBytes =
                static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
        std::fclose(file);
    }
    // The listing has a descriptor of its own.
    figures.descriptors = entriesOf("/proc/self/fd");
    if (figures.descriptors != 0) --figures.descriptors;
    figures.threads = entriesOf("/proc/self/task");
    return figures;
}

}  // namespace oam::server
