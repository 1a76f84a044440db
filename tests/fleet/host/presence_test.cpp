// Whether a host is there, and what it is.
#include <signal.h>

#include "cli/fleet/sight.h"
#include "fleet/agent/board_states.h"
#include "fleet/link/bucket.h"
#include "fleet/names.h"
#include "fleet_test.h"
#include "oam/codes.h"

namespace oam::test {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
// That it is seen within five seconds is tried where nothing else runs beside it.
constexpr auto kPatience = std::chrono::seconds(30);

class FleetPresence : public FleetTest {};

TEST_F(FleetPresence, AHostIsAliveWithItsInventory) {
    StartAll();
    ASSERT_TRUE(AwaitPresence("alive", kPatience));
    ASSERT_TRUE(Await([&] { return FleetJson("viewer", {"hosts"})["hosts"][0]["boards"] == 3; }));
    const Json host = FleetJson("viewer", {"hosts"})["hosts"][0];
    EXPECT_EQ(host["host"], kHostName);
    EXPECT_EQ(host["running"], true);
    EXPECT_EQ(host["directory"], home.Root());
    const Json boards = FleetJson("viewer", {"boards"})["boards"];
    ASSERT_EQ(boards.size(), 3U);
    EXPECT_EQ(boards[0]["host"], kHostName);
    EXPECT_EQ(boards[0]["product"], "SIM-E1");
    EXPECT_EQ(boards[0]["presence"], "alive");
    EXPECT_TRUE(FleetJson("viewer", {"hosts", "--host", "other*"})["hosts"].empty());
    EXPECT_EQ(FleetJson("viewer", {"hosts", "--host", "other,h.*"})["hosts"].size(), 1U);
}

TEST_F(FleetPresence, ABoardsStateFollowsWhatHappensToIt) {
    StartAll();
    const auto stateOf = [&](const std::string& name) {
        const Json told = FleetJson("viewer", {"boards"});
        for (const Json& board : told["boards"])
            if (board["name"] == name) return board["state"].get<std::string>();
        return std::string("none");
    };
    ASSERT_TRUE(Await([&] { return stateOf("Good") == "idle"; }));
    Client client(home);
    EXPECT_EQ(Wait(client, StartBoard(client, "Good"), 60).state(), v1::Operation::STATE_DONE);
    EXPECT_EQ(Wait(client, StartBoard(client, "Bad"), 60).state(), v1::Operation::STATE_FAILED);
    EXPECT_TRUE(Await([&] { return stateOf("Good") == "started"; }));
    EXPECT_TRUE(Await([&] { return stateOf("Bad") == "start failed"; }));
    Tool({"board", "delete", "Bad"});
    EXPECT_TRUE(Await([&] { return stateOf("Bad") == "none"; }));
}

TEST_F(FleetPresence, AFrozenOrKilledAgentIsSeen) {
    StartAll();
    ASSERT_TRUE(AwaitPresence("alive", kPatience));
    agent->Signal(SIGSTOP);
    EXPECT_TRUE(AwaitPresence("stale", kPatience));
    EXPECT_EQ(FleetJson("viewer", {"hosts"})["hosts"][0]["why"], "no heartbeat");
    agent->Signal(SIGCONT);
    EXPECT_TRUE(AwaitPresence("alive", kPatience));
    KillAgent();
    EXPECT_TRUE(AwaitPresence("stale", kPatience));
}

TEST_F(FleetPresence, AFrozenOrKilledDaemonIsSeen) {
    StartAll();
    ASSERT_TRUE(AwaitPresence("alive", kPatience));
    daemon->Signal(SIGSTOP);
    EXPECT_TRUE(AwaitPresence("stale", kPatience));
    EXPECT_EQ(FleetJson("viewer", {"hosts"})["hosts"][0]["why"], "its daemon does not answer");
    daemon->Signal(SIGCONT);
    EXPECT_TRUE(AwaitPresence("alive", kPatience));
    Kill();
    EXPECT_TRUE(AwaitPresence("stale", kPatience));
    EXPECT_EQ(FleetJson("viewer", {"hosts"})["hosts"][0]["why"], "no daemon runs");
    StartAgain();
    EXPECT_TRUE(AwaitPresence("alive", kPatience));
}

TEST_F(FleetPresence, AnAgentThatEndsSaysSo) {
    StartAll();
    ASSERT_TRUE(AwaitPresence("alive", kPatience));
    EndAgent();
    EXPECT_EQ(Presence(), "gone");
    EXPECT_EQ(Fleet("keeper", {"forget", kHostName}).status, 0);
    EXPECT_EQ(Presence(), "unknown");
    EXPECT_EQ(Fleet("keeper", {"forget", kHostName}).status, 4);
}

TEST_F(FleetPresence, AHostWhoseLastHeartbeatHasRunOutIsGoneAndBackWithTheNext) {
    StartAll();
    ASSERT_TRUE(AwaitPresence("alive", kPatience));
    KillAgent();
    // As the bucket does it with what is old.
    const auto keeper = LinkOf("keeper");
    fleet::Bucket(*keeper, fleet::kPresenceBucket).Remove(fleet::TokenOf(kHostName));
    ASSERT_TRUE(AwaitPresence("gone", kPatience));
    const Json host = FleetJson("viewer", {"hosts"})["hosts"][0];
    EXPECT_EQ(host["why"], "nothing was heard of it for long");
    EXPECT_EQ(host["boards"], 3);
    StartAgent();
    EXPECT_TRUE(AwaitPresence("alive", kPatience));
}

fleet::Beat beat(fleet::Beat::Daemon daemon, unsigned interval = 1000) {
    return {"h", 1, "then", interval, daemon, "before"};
}

TEST(FleetSight, ThreeMissedBeatsMakeAHostStale) {
    const auto answering = beat(fleet::Beat::Daemon::kAnswering);
    EXPECT_EQ(fleet::Judge(answering, kSecond, 4 * kSecond - 1).presence, fleet::Presence::kAlive);
    const auto late = fleet::Judge(answering, 1'700'000'000 * kSecond, 1'700'000'003 * kSecond);
    EXPECT_EQ(late.presence, fleet::Presence::kStale);
    EXPECT_EQ(late.since, "2023-11-14T22:13:20.000Z");
    const auto slow = beat(fleet::Beat::Daemon::kAnswering, 10000);
    EXPECT_EQ(fleet::Judge(slow, kSecond, 30 * kSecond).presence, fleet::Presence::kAlive);
    EXPECT_EQ(fleet::Judge(slow, kSecond, 31 * kSecond).presence, fleet::Presence::kStale);
    // The servers' clocks are not quite the same.
    EXPECT_EQ(fleet::Judge(answering, 5 * kSecond, kSecond).presence, fleet::Presence::kAlive);
}

TEST(FleetSight, ADaemonThatDoesNotAnswerMakesAHostStale) {
    for (const auto daemon : {fleet::Beat::Daemon::kSilent, fleet::Beat::Daemon::kAway}) {
        const auto sight = fleet::Judge(beat(daemon), kSecond, kSecond);
        EXPECT_EQ(sight.presence, fleet::Presence::kStale);
        EXPECT_EQ(sight.since, "before");
    }
    EXPECT_EQ(fleet::Judge(beat(fleet::Beat::Daemon::kEnded), kSecond, kSecond).presence,
              fleet::Presence::kGone);
}

v1::Alert alertOf(unsigned code, unsigned severity, std::int64_t time) {
    v1::Alert alert;
    alert.set_code(code);
    alert.set_severity(severity);
    alert.mutable_time()->set_seconds(time);
    return alert;
}

TEST(FleetBoardStory, TellsWhatAlertsAddUpTo) {
    fleet::BoardStory story;
    EXPECT_EQ(story.State(0).name, "idle");
    story.Take(alertOf(OAMEVN_STARTBOARD_DONE, 0, 10));
    EXPECT_EQ(story.State(0).name, "started");
    EXPECT_EQ(story.State(11).name, "idle") << "what was before the service's start is past";
    story.Take(alertOf(OAMEVN_TEMPERATURE_WARNING, 1, 12));
    EXPECT_EQ(story.State(0).name, "warm");
    story.Take(alertOf(OAMEVN_BOARD_DEAD, 2, 13));
    story.Take(alertOf(OAMEVN_TEMPERATURE_WARNING, 1, 14));
    EXPECT_EQ(story.State(0).name, "dead") << "a lesser trouble hides no greater one";
    story.Take(alertOf(OAMEVN_STOPBOARD_DONE, 2, 15));
    EXPECT_EQ(story.State(0).name, "stop failed");
    story.Take(alertOf(OAMEVN_STARTBOARD_DONE, 2, 16));
    EXPECT_EQ(story.State(0).name, "start failed");
}

}  // namespace
}  // namespace oam::test
