// What many objects cost: the start-up scan beside reading the files, and creation and import at
// ten times the number. In memory: the syncs of a disk would hide how the rest grows.

#include <dirent.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "bulk.h"
#include "gauge.h"
#include "oam/entry.h"
#include "raw_files.h"
#include "rows.h"
#include "site.h"
#include "stopwatch.h"

namespace oam::bench {

namespace {

// Stored and not served: the scan alone, without the work for each board.
Shape smallObjects(int count) {
    return {.boards = count, .keywords = 15, .bytes = 700, .hasPlugin = false, .isOnDisk = false};
}

void ourScan(benchmark::State& state, int count) {
    useSite(smallObjects(count));
    for (auto _ : state) {
        (void)_oamExit();
        const Stopwatch watch;
        const bool started = _oamInit() == OAM_SUCCESS;
        state.SetIterationTime(watch.Seconds());
        BENCH_CHECK(state, started);
    }
}

void rawScan(benchmark::State& state, int count) {
    const std::string directory = useSite(smallObjects(count)).Path("oam/cfg");
    for (auto _ : state) {
        const Stopwatch watch;
        DIR* files = opendir(directory.c_str());
        BENCH_CHECK(state, files != nullptr);
        int read = 0;
        while (const dirent* entry = readdir(files)) {
            if (entry->d_name[0] == '.') continue;
            char path[512];
            char buffer[16384];
            std::snprintf(path, sizeof path, "%s/%s", directory.c_str(), entry->d_name);
            read += readWhole(path, buffer, sizeof buffer) > 0;
        }
        closedir(files);
        state.SetIterationTime(watch.Seconds());
        BENCH_CHECK(state, read >= count);
    }
}

void addScan(const char* id, int count, double target) {
    addRow(id, "start-up scan, " + std::to_string(count) + " data files of 15 keywords", target)
        .Ours(Clock::kOwn, [count](benchmark::State& state) { ourScan(state, count); })
        .Limit(Clock::kOwn, "readdir+open+read",
               [count](benchmark::State& state) { rawScan(state, count); });
}

constexpr Shape kEmpty{.boards = 0, .keywords = 15, .bytes = 700, .isOnDisk = false};

// Seconds for each object.
void create(benchmark::State& state, int count) {
    for (auto _ : state) {
        useSite(kEmpty);
        const double seconds = createBoards(count);
        endService();
        BENCH_CHECK(state, seconds > 0);
        state.SetIterationTime(seconds / count);
    }
}

void import(benchmark::State& state, int count) {
    for (auto _ : state) {
        useSite(kEmpty);
        const double seconds = importBoards(count);
        endService();
        BENCH_CHECK(state, seconds > 0);
        state.SetIterationTime(seconds / count);
    }
}

}  // namespace

double createBoards(int count) {
    char name[128];
    const Stopwatch watch;
    for (int i = 0; i < count; ++i) {
        if (_oamCreateBoard(kProduct, name, sizeof name) != OAM_SUCCESS) return -1;
    }
    return watch.Seconds();
}

double importBoards(int count) {
    const std::string file = (scratchDirectory() / "import").string();
    writeExport(file, count);
    const Stopwatch watch;
    if (_oamConfigImport(file.c_str()) != OAM_SUCCESS) return -1;
    return watch.Seconds();
}

void writeExport(const std::string& file, int count) {
    FILE* out = std::fopen(file.c_str(), "w");
    if (out == nullptr) return;
    std::fputs("<?XML version=\"1.0\"?>\n<OA&M Configuration ver. 1.0>\n", out);
    const Shape shape{.boards = count, .keywords = 15, .bytes = 700};
    for (int i = 0; i < count; ++i) {
        // Without the lines of the root.
        const std::string text = dataFileOf(boardName(i), shape, i);
        const size_t begin = text.find("   <Board");
        const size_t end = text.rfind("</OA&M");
        std::fwrite(text.data() + begin, 1, end - begin, out);
    }
    std::fputs("</OA&M Configuration ver. 1.0>\n", out);
    std::fclose(out);
}

void addBulkRows() {
    const int most = mostObjects();
    const int some = most / 10;
    addScan("scan-some", some, 2.4);
    addScan("scan-most", most, 2.7);
    const std::string numbers = std::to_string(most);
    addRow("create", "creation of " + numbers + " objects, time for each", 2)
        .Ours(Clock::kOnce, [=](benchmark::State& state) { create(state, most); })
        .Limit(Clock::kOnce, "ours at " + std::to_string(some),
               [=](benchmark::State& state) { create(state, some); });
    addRow("import", "import of " + numbers + " objects, time for each", 2)
        .Ours(Clock::kOnce, [=](benchmark::State& state) { import(state, most); })
        .Limit(Clock::kOnce, "ours at " + std::to_string(some),
               [=](benchmark::State& state) { import(state, some); });
}

}  // namespace oam::bench
