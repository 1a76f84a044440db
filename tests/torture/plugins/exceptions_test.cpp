// Exceptions out of every entry: each counts as OAM_REASON_FAILED, whatever was thrown.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "figures.h"
#include "oam/codes.h"
#include "trial.h"

namespace oam::torture {
namespace {

struct Thrown {
    const char* what;
    void (*raise)();
};

// Has no text.
struct Speechless : std::exception {
    const char* what() const noexcept override { return nullptr; }
};

const Thrown kThrown[] = {
    {"std::runtime_error", [] { throw std::runtime_error("no firmware"); }},
    {"int", [] { throw 5; }},
    {"std::bad_alloc", [] { throw std::bad_alloc(); }},
    {"const char*", [] { throw "a text"; }},
    {"an exception without a text", [] { throw Speechless(); }},
};
constexpr std::size_t kQuickOneIn = 2;

class ThrowingEntry : public testing::TestWithParam<Situation> {};

TEST_P(ThrowingEntry, HasFailedAndNothingElse) {
    const Situation& situation = GetParam();
    CountPoints(std::size(kThrown));
    for (const std::size_t i : ShareOf(std::size(kThrown), kQuickOneIn, IndexOf(situation))) {
        const Thrown& thrown = kThrown[i];
        TryIn(
            situation, std::string("throws ") + thrown.what,
            [&thrown](World&, const Watched&) -> World::Act {
                return [&thrown](const test::RecordedCall&) -> std::optional<unsigned> {
                    thrown.raise();
                    return std::nullopt;
                };
            },
            ExpectedResult(situation, OAM_REASON_FAILED));
    }
}

INSTANTIATE_TEST_SUITE_P(Of, ThrowingEntry, testing::ValuesIn(AllSituations()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace oam::torture
