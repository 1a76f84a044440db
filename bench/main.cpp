// oam_bench: every row's sides in turn, as often as asked, then one table.
//
//   --json              JSON in place of the table
//   --rounds N          rounds (9)
//   --min-time SECONDS  for each side in each round (0.05)
//   --only TEXT         rows whose name holds the text
//   --growth            the growth table instead
//   --list              the names of the rows

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <iostream>

#include "growth.h"
#include "results.h"
#include "rows.h"
#include "site.h"

using namespace oam::bench;

namespace {

struct Options {
    bool json = false;
    bool growth = false;
    bool list = false;
    int rounds = 9;
    std::string minTime = "0.05";
    std::string only;
    int most = 10000;
};

Options read(int count, char** arguments) {
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string word = arguments[i];
        const auto next = [&]() -> std::string {
            if (i + 1 < count) return arguments[++i];
            std::cerr << "oam_bench: " << word << " needs a value\n";
            std::exit(2);
        };
        if (word == "--json") {
            options.json = true;
        } else if (word == "--growth") {
            options.growth = true;
        } else if (word == "--list") {
            options.list = true;
        } else if (word == "--rounds") {
            options.rounds = std::max(1, std::atoi(next().c_str()));
        } else if (word == "--min-time") {
            options.minTime = next();
        } else if (word == "--only") {
            options.only = next();
        } else if (word == "--most") {
            options.most = std::max(10, std::atoi(next().c_str()));
        } else {
            std::cerr << "usage: oam_bench [--json] [--rounds N] [--min-time SECONDS] "
                         "[--only TEXT] [--most OBJECTS] [--growth] [--list]\n";
            std::exit(2);
        }
    }
    return options;
}

void registerSides(const Row& row) {
    for (const Side& side : row.sides) {
        if (side.run == nullptr) continue;
        auto* registered = benchmark::RegisterBenchmark(nameOf(row, side).c_str(), side.run);
        registered->Unit(benchmark::kNanosecond);
        if (side.clock == Clock::kWhole) {
            registered->UseRealTime();
        } else {
            registered->UseManualTime();
        }
        if (side.clock == Clock::kOnce) registered->Iterations(1);
    }
}

}  // namespace

int main(int count, char** arguments) {
    const Options options = read(count, arguments);
    mostObjects() = options.most;
    addDatabaseRows();
    addLookUpRows();
    addAlertRows();
    addShadowRows();
    addBulkRows();
    addStartRows();
    addHpiRows();
    if (options.list) {
        for (const Row& row : rows()) std::cout << row.id << "  " << row.operation << "\n";
        return 0;
    }
    if (options.growth) {
        const bool grown = printGrowth(std::cout, options.json);
        endSites();
        return grown ? 0 : 1;
    }

    std::string minTime = "--benchmark_min_time=" + options.minTime;
    char* fixed[] = {arguments[0], minTime.data(), nullptr};
    int fixedCount = 2;
    benchmark::Initialize(&fixedCount, fixed);
    for (const Row& row : rows()) registerSides(row);

    Results results;
    for (int round = 0; round < options.rounds; ++round) {
        for (const Row& row : rows()) {
            if (row.id.find(options.only) == std::string::npos) continue;
            benchmark::RunSpecifiedBenchmarks(&results, nullptr, "^" + row.id + "/");
        }
        std::cerr << "round " << round + 1 << " of " << options.rounds << "\n";
    }
    endSites();
    options.json ? results.PrintJson(std::cout) : results.PrintTable(std::cout);
    return results.HasFailed() ? 1 : 0;
}
