#include "outcome_script.h"

#include <gtest/gtest.h>

#include <string>

namespace oam::sim {
namespace {

using namespace std::chrono_literals;

TEST(OutcomeScript, GivesEachOutcomeOnceAndKeepsTheLast) {
    auto script = OutcomeScript::Parse("ok, FAIL,hang 2s , code 0x5000ABCD");
    ASSERT_TRUE(script);
    EXPECT_EQ(script->TakeNext(), Outcome{});
    EXPECT_EQ(script->TakeNext(), Outcome{.kind = Outcome::Kind::Fail});
    EXPECT_EQ(script->TakeNext(), (Outcome{.kind = Outcome::Kind::Hang, .hang = 2s}));
    const Outcome last = {.kind = Outcome::Kind::Code, .code = oam_result{0x5000ABCD}};
    EXPECT_EQ(script->TakeNext(), last);
    EXPECT_EQ(script->TakeNext(), last);
}

TEST(OutcomeScript, HasNothingToGiveWhenEmpty) { EXPECT_FALSE(OutcomeScript().TakeNext()); }

TEST(OutcomeScript, RefusesWhatIsNoOutcome) {
    for (const auto* text :
         {"", "okay", "ok ok", "fail 2", "hang", "hang soon", "code", "code 5", "code 0x",
          "code 0x0", "code 0x100000000", "code 0xG", "ok,,ok", ",ok"}) {
        EXPECT_FALSE(OutcomeScript::Parse(text)) << text;
    }
}

TEST(OutcomeScript, IsBounded) {
    std::string longest = "ok";
    for (std::size_t i = 1; i < OutcomeScript::kLongest; ++i) longest += ",ok";
    EXPECT_TRUE(OutcomeScript::Parse(longest));
    EXPECT_FALSE(OutcomeScript::Parse(longest + ",ok"));
}

TEST(OutcomeScript, ComparesByWhatIsWrittenNotByHowFarItIs) {
    auto one = OutcomeScript::Parse("fail, ok");
    const auto other = OutcomeScript::Parse("FAIL,OK");
    (void)one->TakeNext();
    EXPECT_TRUE(one->SameSteps(*other));
    EXPECT_FALSE(one->SameSteps(*OutcomeScript::Parse("fail")));
}

}  // namespace
}  // namespace oam::sim
