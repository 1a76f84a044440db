// The judge as a program: what it takes, answers and leaves behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "judgement.h"
#include "package.h"
#include "program.h"
#include "support/installation.h"

namespace fs = std::filesystem;
using oam::test::BadPlugin;
using oam::test::Installation;
using oam::test::Judge;
using oam::test::Layout;
using oam::test::PackageProgram;
using oam::test::ProgramOutcome;
using oam::test::RunProgram;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class CheckProgram : public testing::Test {
  protected:
    ProgramOutcome Run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), PackageProgram("oam-plugin-check"));
        return RunProgram(arguments, home.Root());
    }
    std::string Write(const char* name, const std::string& bytes) const {
        home.Write(name, bytes);
        return home.Path(name);
    }

    Installation home{Layout::kBare};
};

TEST_F(CheckProgram, NeedsAFile) {
    const auto outcome = Run({});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.err, HasSubstr("which file?"));
}

TEST_F(CheckProgram, RefusesAFileOfAnotherName) {
    EXPECT_EQ(Run({Write("library.so", "")}).status, 2);
}

TEST_F(CheckProgram, RefusesAFileThatIsNotThere) {
    EXPECT_EQ(Run({home.Path("gone.bpi")}).status, 2);
}

TEST_F(CheckProgram, RefusesADirectory) {
    home.MakeDirectory("directory.bpi");
    EXPECT_EQ(Run({home.Path("directory.bpi")}).status, 2);
}

TEST_F(CheckProgram, RefusesATimeOfNothing) {
    EXPECT_EQ(Run({"x.bpi", "--timeout", "0"}).status, 2);
    EXPECT_EQ(Run({"x.bpi", "--timeout", "soon"}).status, 2);
}

TEST_F(CheckProgram, FindsThatATextIsNoSharedObject) {
    const auto judgement = Judge(Write("text.bpi", "not a library at all, but long enough\n"));
    EXPECT_EQ(judgement.status, 1);
    EXPECT_EQ(judgement.Broken(), std::set<std::string>{"shared-object"});
}

TEST_F(CheckProgram, FindsThatAProgramIsNoSharedObject) {
    fs::copy_file(PackageProgram("oam-plugin-check"), home.Path("program.bpi"));
    // A position-independent program passes for a shared object, but has no entries.
    const auto judgement = Judge(home.Path("program.bpi"));
    EXPECT_EQ(judgement.status, 1);
    EXPECT_TRUE(judgement.Broken().contains("entries"));
}

TEST_F(CheckProgram, SurvivesEveryCutOfAFile) {
    const auto whole = oam::test::ReadText(BadPlugin("throws"));
    ASSERT_GT(whole.size(), 4096u);
    for (const size_t size : {size_t{0}, size_t{3}, size_t{63}, size_t{64}, size_t{1000},
                              whole.size() / 2, whole.size() - 65}) {
        const auto judgement = Judge(Write("cut.bpi", whole.substr(0, size)));
        EXPECT_EQ(judgement.status, 1) << size;
        EXPECT_EQ(judgement.Broken(), std::set<std::string>{"shared-object"}) << size;
    }
}

TEST_F(CheckProgram, SurvivesEverySpoiledByteOfTheTables) {
    const auto whole = oam::test::ReadText(BadPlugin("missing_entry"));
    // A run takes ten times as long under a sanitizer.
#ifdef OAM_SANITIZED
    constexpr size_t kStep = 7;
#else
    constexpr size_t kStep = 1;
#endif
    for (size_t at = 16; at < 64; at += kStep) {
        auto spoiled = whole;
        spoiled[at] = static_cast<char>(0xFF);
        EXPECT_EQ(Judge(Write("spoiled.bpi", spoiled)).status, 1) << at;
    }
}

TEST_F(CheckProgram, TellsInAlignedLinesWhatItFound) {
    const auto outcome = Run({BadPlugin("missing_entry")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, HasSubstr("missing_entry.bpi, a board plug-in\n\n"));
    EXPECT_THAT(outcome.out, HasSubstr("error    entries           It exports every required"));
    EXPECT_THAT(outcome.out, HasSubstr("\n         StopBoard         it is not exported\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\n1 error, 0 warnings, 2 notes\n"));
    EXPECT_THAT(outcome.err, IsEmpty());
}

TEST_F(CheckProgram, AnswersOneObjectInJson) {
    const auto judgement = Judge(BadPlugin("missing_entry"));
    const auto& report = judgement.report;
    EXPECT_EQ(report["schema"], 1);
    EXPECT_EQ(report["kind"], "board plug-in");
    EXPECT_EQ(report["errors"], 1);
    EXPECT_EQ(report["warnings"], 0);
    EXPECT_EQ(report["findings"][0]["severity"], "error");
    EXPECT_EQ(report["findings"][0]["rule"], "entries");
    EXPECT_EQ(report["findings"][0]["entry"], "StopBoard");
    EXPECT_FALSE(report["findings"][0]["sentence"].get<std::string>().empty());
}

TEST_F(CheckProgram, LeavesNothingBehindAndNobodyAlive) {
    // The marker is in the name of the copy that every run makes.
    const auto marked = home.Path("left_behind_" + home.Root().substr(8) + ".bpi");
    fs::copy_file(BadPlugin("hangs_in_stop"), marked);
    EXPECT_EQ(Run({marked, "--timeout", "1"}).status, 1);
    for (const auto& entry : fs::directory_iterator("/tmp")) {
        std::error_code ignored;
        EXPECT_FALSE(fs::exists(entry.path() / "lib" / fs::path(marked).filename(), ignored));
    }
    for (const auto& entry : fs::directory_iterator("/proc")) {
        const auto line = oam::test::ReadText(entry.path() / "cmdline");
        EXPECT_THAT(line, testing::Not(HasSubstr(marked)));
    }
}

TEST_F(CheckProgram, ShowsEveryRule) {
    const auto outcome = Run({"--rules"});
    EXPECT_EQ(outcome.status, 0);
    for (const char* rule : {"entries", "returns", "overrun", "database-failure"})
        EXPECT_THAT(outcome.out, HasSubstr(std::string("  ") + rule + " "));
}

}  // namespace
