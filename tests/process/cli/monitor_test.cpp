#include <signal.h>

#include <sstream>

#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

constexpr const char* kChassis = R"(
board: Good
product: SIM-E1
bus: 1
slot: 1
start-time: 1ms
)";

class ToolMonitor : public ToolTest {
  protected:
    // A board that the service starts by itself, five seconds after its own start.
    void AddAutomaticBoard() const {
        AddSim(kChassis);
        Out({"board", "add", "--all"});
        Out({"supervisor", "AutoStartEnabled=Yes"});
        Out({"set", "Good", "AutoStart=Yes"});
    }
};

}  // namespace

TEST_F(ToolMonitor, EndsByItselfAfterItsTime) { EXPECT_EQ(Out({"monitor", "--for", "1"}), ""); }

TEST_F(ToolMonitor, PrintsAlertsAsTheyComeAndEndsAfterTheirCount) {
    AddAutomaticBoard();
    EXPECT_THAT(Out({"monitor", "--count", "1"}),
                MatchesRegex("[-0-9T:+]+  info     OAMEVN_STARTBOARD_DONE  \"Good\"  "
                             "Board is started\\.\n"));
}

TEST_F(ToolMonitor, PrintsOneJsonObjectALine) {
    AddAutomaticBoard();
    std::istringstream lines(Out({"monitor", "--for", "6", "--json"}));
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        const auto alert = nlohmann::json::parse(line, nullptr, false);
        ASSERT_TRUE(alert.is_object()) << line;
        EXPECT_EQ(alert["schema"], 1);
        EXPECT_EQ(alert["code"], 0x40002101);
        EXPECT_EQ(alert["event"], "OAMEVN_STARTBOARD_DONE");
        EXPECT_EQ(alert["severity"], "info");
        EXPECT_EQ(alert["source"], "Good");
        EXPECT_EQ(alert["text"], "Board is started.\n");
    }
    EXPECT_EQ(count, 1);
}

TEST_F(ToolMonitor, EndsInGoodOrderWhenInterrupted) {
    AddAutomaticBoard();
    for (const int number : {SIGINT, SIGTERM}) {
        ChildProcess monitor(ToolCommand({"monitor"}), home.Root());
        // Then it waits for alerts. A signal during the start may be taken by another thread (the
        // one that makes a thread takes none meanwhile), and the thread sanitizer keeps it back
        // for as long as that thread waits at a condition variable.
        monitor.AwaitOutput("OAMEVN_STARTBOARD_DONE");
        monitor.Signal(number);
        EXPECT_EQ(monitor.Finish().status, 130);
    }
    EXPECT_THAT(home.Read("oam/log/startup.log"), HasSubstr("Logging stop"));
}

TEST_F(ToolMonitor, EndsWhenNobodyReadsAnyMore) {
    AddAutomaticBoard();
    ChildProcess monitor(ToolCommand({"monitor"}), home.Root());
    monitor.CloseOutput();
    EXPECT_THAT(monitor.Finish(), Complains(1, "cannot write the output"));
}

}  // namespace oam::test
