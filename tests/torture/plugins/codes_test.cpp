// Every entry answers every kind of code: what is documented comes of it, and nothing else.
#include <gtest/gtest.h>

#include <climits>

#include "figures.h"
#include "oam/codes.h"
#include "trial.h"

namespace oam::torture {
namespace {

constexpr std::size_t kQuickOneIn = 9;

const std::vector<unsigned>& codes() {
    static const std::vector<unsigned> kCodes = {
        OAM_SUCCESS,
#define OAM_CODE(name, value) value,
#include "oam/codes.def"
#undef OAM_CODE
        1,
        7,        // what a bad board name is refused with
        0xF0027,  // what a file that cannot be loaded gives
        0xF0028,  // what a missing entry gives
        INT_MAX,
        static_cast<unsigned>(INT_MIN),
        static_cast<unsigned>(-1),  // also the internal client's value
        static_cast<unsigned>(-14),
        0x3FFFFFFF,
        0x4000000A,  // in a gap of the service's own
        0x400020FF,
        0x51000001,  // a module's own
    };
    return kCodes;
}

class AnsweredCode : public testing::TestWithParam<Situation> {};

TEST_P(AnsweredCode, IsPassedOnOrLeftAsDocumented) {
    const Situation& situation = GetParam();
    CountPoints(codes().size());
    for (const std::size_t i : ShareOf(codes().size(), kQuickOneIn, IndexOf(situation))) {
        const unsigned code = codes()[i];
        TryIn(
            situation, "answers " + NameOfCode(code),
            [code](World&, const Watched&) -> World::Act {
                return [code](const test::RecordedCall&) { return code; };
            },
            ExpectedResult(situation, code));
    }
}

std::vector<Situation> withCodes() {
    std::vector<Situation> all = AllSituations();
    std::erase_if(all, [](const Situation& one) { return one.fate == Fate::kNoCode; });
    return all;
}

INSTANTIATE_TEST_SUITE_P(Of, AnsweredCode, testing::ValuesIn(withCodes()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace oam::torture
