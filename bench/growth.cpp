#include "growth.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

#include "bulk.h"
#include "gauge.h"
#include "oam/entry.h"
#include "site.h"
#include "stopwatch.h"

namespace oam::bench {

namespace {

// Milliseconds; -1 when it failed.
struct Figures {
    int boards;
    double start = -1, list = -1, create = -1, commit = -1, exported = -1, imported = -1;
    double memory = 0;  // MB more than before the start
};

double residentMegabytes() {
    long pages = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

template <class Work>
double milliseconds(Work work, int times = 1) {
    const Stopwatch watch;
    for (int i = 0; i < times; ++i) {
        if (!work()) return -1;
    }
    return watch.Seconds() * 1000 / times;
}

bool commitOnce(int value) {
    unsigned long handle;
    if (_oamOpenObject(1, boardName(5).c_str(), &handle, OAM_OPEN_WRITE) != OAM_SUCCESS) {
        return false;
    }
    const bool set =
        _oamSetKeyword(handle, "Location.PCI.Slot", std::to_string(value).c_str()) == OAM_SUCCESS;
    return _oamCloseObject(handle) == OAM_SUCCESS && set;
}

Figures measure(int boards) {
    Figures figures{boards};
    endService();
    const double before = residentMegabytes();
    useSite(
        {.boards = boards, .keywords = 15, .bytes = 700, .isStarted = false, .isOnDisk = false});
    figures.start = milliseconds([] { return _oamInit() == OAM_SUCCESS; });
    figures.memory = residentMegabytes() - before;
    figures.list = milliseconds([=] {
        char name[128];
        int listed = 0;
        while (_oamBoardEnum(listed, name, sizeof name) == OAM_SUCCESS) ++listed;
        return listed == boards;
    });
    char name[128];
    figures.create = milliseconds(
        [&] { return _oamCreateBoard(kProduct, name, sizeof name) == OAM_SUCCESS; }, 10);
    int value = 0;
    figures.commit = milliseconds([&] { return commitOnce(++value); }, 10);
    const std::string file = (scratchDirectory() / "export").string();
    figures.exported = milliseconds([&] { return _oamConfigExport(file.c_str()) == OAM_SUCCESS; });
    // Into none: an import stops the boards that there are, with a notice of 150 ms each.
    useSite({.boards = 0, .keywords = 15, .bytes = 700, .isOnDisk = false});
    const double imported = importBoards(boards);
    if (imported > 0) figures.imported = imported * 1000;
    endService();
    return figures;
}

}  // namespace

bool printGrowth(std::ostream& out, bool json) {
    nlohmann::json all = nlohmann::json::array();
    bool good = true;
    if (!json) {
        out << "| boards | start, ms | list, ms | one creation, ms | one commit, ms | export, ms | "
               "import, ms | memory, MB |\n|---|---|---|---|---|---|---|---|\n";
    }
    for (int boards = 10; boards <= mostObjects(); boards *= 10) {
        const Figures f = measure(boards);
        for (const double one : {f.start, f.list, f.create, f.commit, f.exported, f.imported}) {
            good = good && one >= 0;
        }
        if (json) {
            all.push_back({{"boards", boards},
                           {"milliseconds",
                            {{"start", f.start},
                             {"list", f.list},
                             {"create", f.create},
                             {"commit", f.commit},
                             {"export", f.exported},
                             {"import", f.imported}}},
                           {"megabytes", f.memory}});
        } else {
            char line[256];
            std::snprintf(line, sizeof line,
                          "| %d | %.1f | %.3f | %.2f | %.2f | %.1f | %.1f | %.1f |\n", boards,
                          f.start, f.list, f.create, f.commit, f.exported, f.imported, f.memory);
            out << line << std::flush;
        }
    }
    if (json) out << all.dump(2) << "\n";
    return good;
}

}  // namespace oam::bench
