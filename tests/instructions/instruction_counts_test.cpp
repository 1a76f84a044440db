// How many instructions the hot operations take: unlike a time it is the same on a busy machine.
// The bounds leave a quarter to other compilers and libraries; who makes an operation dearer than
// that finds out here, and who makes it cheaper lowers its bound.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "operations.h"
#include "support/installation.h"

namespace oam::bench {
namespace {

namespace fs = std::filesystem;

// What one operation takes, by its name.
std::map<std::string, double> countsIn(const fs::path& directory) {
    const std::string trigger = "desc: Trigger: Client Request: ";
    const std::string summary = "summary: ";
    std::map<std::string, double> counts;
    for (const auto& entry : fs::directory_iterator(directory)) {
        std::ifstream file(entry.path());
        std::string name;
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with(trigger)) name = line.substr(trigger.size());
            if (line.starts_with(summary) && !name.empty()) {
                counts[name] = std::stod(line.substr(summary.size())) / kTimes;
            }
        }
    }
    return counts;
}

TEST(InstructionCounts, OfTheHotOperationsStayWithinTheirBounds) {
    if (std::system("command -v valgrind >/dev/null 2>&1") != 0) GTEST_SKIP() << "no valgrind";
    const test::Installation place;
    // Without an environment, through which every operation would look for the directory.
    const std::string command =
        "env -i PATH=\"$PATH\" valgrind --tool=callgrind --collect-atstart=no "
        "--callgrind-out-file=" +
        place.Path("shm/counts") + " " OAM_HOT_OPERATIONS " >" + place.Path("output") + " 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << place.Read("output");

    const std::map<std::string, double> bounds = {
        {kReadChanged, 26200}, {kReadUnchanged, 6500}, {kKeyword, 1950},
        {kCommit, 143000},     {kAlert, 2950},         {kShadow, 1690},
    };
    const auto counts = countsIn(place.Path("shm"));
    for (const auto& [name, bound] : bounds) {
        ASSERT_EQ(counts.count(name), 1u) << name;
        std::cout << name << ": " << counts.at(name) << " instructions, bound " << bound << "\n";
        EXPECT_LE(counts.at(name), bound) << name;
        EXPECT_GE(counts.at(name), bound / 3) << name << ": lower the bound";
    }
}

}  // namespace
}  // namespace oam::bench
