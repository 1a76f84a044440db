// What a command says when it is run for somebody else.
#include <gmock/gmock.h>

#include "console.h"
#include "failure.h"

namespace oam::test {
namespace {

TEST(CollectedOutput, HoldsAnswersAndRemarksAndNothingIsWritten) {
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    CollectedOutput collected;
    Console console(/*json=*/false, &collected);
    console.Show("boards", Table{{{"name", "NAME"}, {"number", "NUMBER", true}}, {{"a\nb", 7}}});
    console.Say("said");
    console.Value("a\x1b");
    console.Note("noted");
    console.Whisper("for people who look");
    console.Complain(Failure("failed", "do this"));
    console.Flush();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(collected.out, "NAME  NUMBER\na\\nb       7\nsaid\na\\x1b\n");
    EXPECT_EQ(collected.err, "noted\nfailed\ndo this\n");
}

TEST(CollectedOutput, IsOneObjectInJson) {
    CollectedOutput collected;
    Console console(/*json=*/true, &collected);
    console.Say("nothing");
    console.ShowJson({{"a", 1}});
    EXPECT_EQ(Json::parse(collected.out), (Json{{"schema", 1}, {"a", 1}}));
}

}  // namespace
}  // namespace oam::test
