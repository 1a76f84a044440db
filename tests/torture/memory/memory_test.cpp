// Every exported function without memory: a documented code, and the state of before or of after.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <set>

#include "rig.h"
#include "support/exported_functions.h"

namespace oam::torture {
namespace {

struct Totals {
    Figures figures;
    std::set<std::string> functions;
};

Totals& totals() {
    static Totals sums;
    return sums;
}

// The last line of the program.
class TellFigures : public ::testing::Environment {
  public:
    void TearDown() override {
        const Figures& figures = totals().figures;
        std::printf(
            "out of memory: %zu functions, %zu allocation points, %zu tried, "
            "%zu wrong outcomes\n",
            totals().functions.size(), figures.requests, figures.tried, figures.wrong);
    }
};

[[maybe_unused]] const auto* const kTold = ::testing::AddGlobalTestEnvironment(new TellFigures);

// Tables have 16 slots to a step. With 12 and 13 boards the objects are 16 and 17.
std::vector<int> countsFor(const Row& row) {
    if (IsFull()) return {1, 12, 13, 16, 17};
    return row.isIntricate ? std::vector<int>{1, 12, 17} : std::vector<int>{1, 17};
}

std::string titleOf(const Row& row) {
    std::string title;
    for (const char* part : {row.name, row.what}) {
        bool isFirst = true;
        for (; *part != '\0'; ++part) {
            if (std::isalnum(static_cast<unsigned char>(*part)) == 0) {
                isFirst = true;
                continue;
            }
            title += isFirst ? static_cast<char>(std::toupper(*part)) : *part;
            isFirst = false;
        }
    }
    return title;
}

std::vector<Row> allRows() {
    std::vector<Row> all;
    for (auto* family : {&LifecycleRows, &ObjectRows, &DatabaseRows, &ConfigurationRows, &BoardRows,
                         &QueryRows, &AlertRows, &ShadowRows}) {
        for (Row& row : family()) all.push_back(std::move(row));
    }
    return all;
}

class WithoutMemory : public ::testing::TestWithParam<Row> {};

TEST_P(WithoutMemory, AnswersADocumentedCodeAndLeavesNothingHalfDone) {
    totals().functions.insert(GetParam().name);
    for (const int count : countsFor(GetParam())) {
        World world(count);
        totals().figures += TryRow(world, GetParam());
    }
}

INSTANTIATE_TEST_SUITE_P(Each, WithoutMemory, ::testing::ValuesIn(allRows()),
                         [](const auto& row) { return titleOf(row.param); });

TEST(MemoryRows, HaveEveryExportedFunction) {
    std::set<std::string> rows;
    for (const Row& row : allRows()) rows.insert(row.name);
    EXPECT_EQ(rows, test::ExportedFunctions());
}

}  // namespace
}  // namespace oam::torture
