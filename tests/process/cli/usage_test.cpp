// How the tool is called, and how it ends.
#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class ToolUsage : public ToolTest {
  protected:
    Finished Shell(const std::string& command) const {
        return ChildProcess({"/bin/sh", "-c", OAM_TOOL " " + command}, home.Root()).Finish();
    }
};

}  // namespace

TEST_F(ToolUsage, HelpIsAnAnswerAndNoFailure) {
    EXPECT_THAT(Out({"--help"}), HasSubstr("Subcommands:"));
    EXPECT_THAT(Out({"board", "--help"}), HasSubstr("lookup"));
    EXPECT_THAT(Out({"board", "start", "--help"}), HasSubstr("--timeout"));
}

TEST_F(ToolUsage, WrongUseIsStatusTwo) {
    for (const Words& words : {Words{},
                               {"bogus"},
                               {"board"},
                               {"board", "bogus"},
                               {"get", "Supervisor"},
                               {"objects", "x"},
                               {"objects", "--bogus"},
                               {"board", "add"},
                               {"board", "add", "x", "--all"},
                               {"board", "add", ""},
                               {"board", "start"},
                               {"board", "start", "x", "--timeout", "0"},
                               {"board", "lookup"},
                               {"board", "lookup", "--number", "1", "--mac", "2"},
                               {"board", "lookup", "--number", "-1"},
                               {"board", "send", "x"},
                               {"set", "Supervisor"},
                               {"set", "Supervisor", "AutoStartEnabled"},
                               {"set", "Supervisor", "=Yes"},
                               {"set", "Supervisor", "a=1", "A=2"},
                               {"supervisor", "Bogus=Yes"},
                               {"--dir", "", "check"}}) {
        const Finished run = Run(words);
        EXPECT_EQ(run.status, 2) << ::testing::PrintToString(words) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err, "");
    }
}

TEST_F(ToolUsage, OptionsForEveryCommandStandBeforeOrBehindIt) {
    EXPECT_EQ(Out({"--json", "text", "0x40000004"}), Out({"text", "0x40000004", "--json"}));
    EXPECT_EQ(Out({"--dir", home.Root(), "objects"}), Out({"objects", "--dir", home.Root()}));
}

TEST_F(ToolUsage, TheDirectoryOptionGoesBeforeTheEnvironmentAndMayBeRelative) {
    home.MakeDirectory("other");
    Out({"--dir", "other", "init"});
    Out({"--dir", "./other/", "objects"});
    EXPECT_TRUE(home.Exists("other/oam/cfg/Super.xmo"));
    EXPECT_FALSE(home.Exists("oam/cfg/Super.xmo"));
}

TEST_F(ToolUsage, ADirectoryThatIsNoInstallationIsNotMadeOne) {
    const Finished run = Run({"--dir", "nowhere", "objects"});
    EXPECT_THAT(run, Complains(1, "is not an installation"));
    EXPECT_THAT(run.err, HasSubstr("init`"));
    EXPECT_FALSE(home.Exists("nowhere"));
}

TEST_F(ToolUsage, NamesLikeCommandsAreNames) {
    EXPECT_THAT(Run({"show", "check"}), Complains(4, "cannot open the object \"check\""));
    EXPECT_THAT(Run({"get", "Supervisor", "init", "board"}), Complains(4, "cannot read \"init\""));
}

TEST_F(ToolUsage, AnAnswerThatCannotBeWrittenIsAFailure) {
    EXPECT_THAT(Shell("objects > /dev/full"), Complains(1, "cannot write the output"));
    EXPECT_THAT(Shell("text 0x40000004 > /dev/full"), Complains(1, "cannot write the output"));
}

TEST_F(ToolUsage, MessagesSayWhoSpeaks) {
    EXPECT_THAT(Run({"get", "Supervisor", "Bogus"}).err, StartsWith("oam: "));
}

}  // namespace oam::test
