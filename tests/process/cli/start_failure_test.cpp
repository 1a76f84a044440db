// What the tool tells when the service does not start, or not with everything.
#include "support/data_file.h"
#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

class ToolStartFailure : public ToolTest {};

}  // namespace

TEST_F(ToolStartFailure, NamesThePlugInThatCannotBeLoaded) {
    home.Write("lib/bad.bpi", "no library");
    const Finished run = Run({"objects"});
    EXPECT_THAT(run, Complains(1, "the service does not start: 0x000f0027"));
    EXPECT_THAT(run.err,
                HasSubstr("start-up log: Plug-in(I): => Loading " + home.Path("lib/bad.bpi")));
    EXPECT_THAT(run.err, HasSubstr("start-up log: Plug-in(E): !! FAILED !! (0xf0027)"));
    EXPECT_THAT(run.err, HasSubstr("`ldd`"));
    EXPECT_EQ(run.out, "");
}

TEST_F(ToolStartFailure, NamesTheCodeWhenTwoBoardsHaveOneNumber) {
    AddSim();
    for (const char* name : {"A", "B"})
        home.WriteDataFile(std::string(name) + ".xmo",
                           DataFile(name, StandardEntries(name, "SIM-E1")));
    const Finished run = Run({"objects"});
    EXPECT_THAT(run,
                Complains(1, "the service does not start: OAMERR_ALREADY_EXISTS (0x40000005)"));
    EXPECT_THAT(run.err, HasSubstr("`oam check`"));
}

TEST_F(ToolStartFailure, TellsOfADataFileThatWasSetAside) {
    home.WriteDataFile("Obj0.xmo", "rubbish");
    const Finished run = Run({"objects"});
    EXPECT_THAT(run, Complains(0,
                               "oam: Supervisor: Rejecting invalid object data file \"Obj0.xmo\", "
                               "saving to \"Obj0.bak\"."));
    EXPECT_THAT(run.out, HasSubstr("Supervisor"));
}

TEST_F(ToolStartFailure, TellsAPathThatIsTooLong) {
    home.MoveRootToLength(108);
    EXPECT_THAT(Run({"objects"}), Complains(1, "is too long"));
}

TEST_F(ToolStartFailure, LeavesTheLockFree) {
    home.Write("lib/bad.bpi", "no library");
    Run({"objects"});
    home.Remove("lib/bad.bpi");
    Out({"objects"});
}

}  // namespace oam::test
