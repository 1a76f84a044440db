// Start, stop and test, with outcomes that the simulated chassis is told to give.
#include <signal.h>

#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kChassis = R"(
board: Good
product: SIM-E1
bus: 1
slot: 1
start-time: 1ms
stop-time: 1ms
test-time: 1ms

board: Bad
product: SIM-E1
bus: 1
slot: 2
start: fail
stop: fail
test: fail
start-time: 1ms
stop-time: 1ms
test-time: 1ms

board: Stuck
product: SIM-E1
bus: 1
slot: 3
start: hang 3600s

board: Slow
product: SIM-E1
bus: 1
slot: 4
start-time: 6s
)";

class ToolOperations : public ToolTest {
  protected:
    void SetUp() override {
        AddSim(kChassis);
        Out({"board", "add", "--all"});
    }
};

}  // namespace

TEST_F(ToolOperations, TheOutcomeIsTold) {
    EXPECT_EQ(Out({"board", "start", "good"}), "start \"Good\": done: Board is started.\n");
    EXPECT_EQ(Out({"board", "stop", "Good"}), "stop \"Good\": done: Board is stopped.\n");
    EXPECT_EQ(Out({"board", "test", "Good", "--value", "0x7"}),
              "test \"Good\": done: Test of board was successful.\n");
}

TEST_F(ToolOperations, AFailureIsStatusOneWithTheServicesText) {
    for (const auto& [verb, text] :
         {std::pair("start", "start \"Bad\": failed: Failed to start board."),
          std::pair("test", "test \"Bad\": failed: Test of board failed.")}) {
        const Finished run = Run({"board", verb, "Bad"});
        EXPECT_THAT(run, Complains(1, text));
        EXPECT_EQ(run.out, "");
    }
}

TEST_F(ToolOperations, SeveralBoardsAreEachTold) {
    const Finished run = Run({"board", "start", "Good", "Bad", "GOOD"});
    EXPECT_EQ(run.status, 8);
    EXPECT_EQ(run.out, "start \"Good\": done: Board is started.\n");
    EXPECT_EQ(run.err, "oam: start \"Bad\": failed: Failed to start board.\n");
}

TEST_F(ToolOperations, NothingBegunByTheEndIsComplainedAbout) {
    Out({"supervisor", "AutoStopEnabled=Yes"});
    Out({"set", "Good", "AutoStop=Yes"});
    for (int i = 0; i < 5; ++i) {
        const Finished run = Run({"board", "start", "Good"});
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, "");
    }
}

TEST_F(ToolOperations, AllBoardsAreAllOfTheTable) {
    Out({"board", "delete", "Stuck"});
    Out({"board", "delete", "Slow"});
    const auto answer = Json({"board", "test", "--all"});
    EXPECT_EQ(answer["operation"], "test");
    ASSERT_EQ(answer["boards"].size(), 2u);
    for (const auto& board : answer["boards"])
        EXPECT_EQ(board["outcome"], board["board"] == "Good" ? "done" : "failed");
    Out({"board", "delete", "--all"});
    EXPECT_EQ(Out({"board", "test", "--all"}), "there are no boards\n");
}

TEST_F(ToolOperations, NoAnswerInTimeIsAnUnknownOutcome) {
    const Finished run = Run({"board", "start", "Stuck", "Good", "--timeout", "1"});
    EXPECT_THAT(run, Complains(7, "start \"Stuck\": outcome unknown: nothing after 1 s"));
    EXPECT_EQ(run.out, "start \"Good\": done: Board is started.\n");
}

TEST_F(ToolOperations, AnInterruptedWaitEndsInGoodOrder) {
    for (const int number : {SIGINT, SIGTERM}) {
        ChildProcess tool(ToolCommand({"board", "start", "Stuck", "Good"}), home.Root());
        tool.AwaitOutput("start \"Good\": done");
        tool.Signal(number);
        EXPECT_THAT(tool.Finish(), Complains(7, "start \"Stuck\": outcome unknown: interrupted"));
    }
}

TEST_F(ToolOperations, RequestsAreOnlyHandedOverWhenAsked) {
    EXPECT_EQ(Out({"board", "start", "Stuck", "--no-wait"}), "start \"Stuck\": requested\n");
}

TEST_F(ToolOperations, SynchronizedOperationsAreDoneToo) {
    Out({"supervisor", "SynchronizeEnabled=Yes"});
    EXPECT_EQ(Out({"board", "start", "Good"}), "start \"Good\": done: Board is started.\n");
    EXPECT_THAT(Run({"board", "start", "Bad"}), Complains(1, "Failed to start board."));
}

TEST_F(ToolOperations, AnUnknownBoardIsRefusedBeforeAnythingIsDone) {
    const Finished run = Run({"board", "start", "Good", "Bogus"});
    EXPECT_THAT(run, Complains(4, "there is no board \"Bogus\": OAMERR_NOT_FOUND"));
    EXPECT_THAT(run.out, IsEmpty());
}

// After five seconds the service starts marked boards by itself, and is refused for one that is
// being started already. The refusal bears our board's name and our event.
TEST_F(ToolOperations, TheRefusalOfTheAutomaticStartIsNotTakenForOurs) {
    Out({"supervisor", "AutoStartEnabled=Yes"});
    Out({"set", "Slow", "AutoStart=Yes"});
    const Finished run = Run({"board", "start", "Slow"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "start \"Slow\": done: Board is started.\n");
    EXPECT_THAT(run.err, Not(HasSubstr("being started")));
}

}  // namespace oam::test
