// Requests from the fleet: what comes back, and who may.
#include <signal.h>

#include "cli/fleet/host_pattern.h"
#include "cli/fleet/three_lists.h"
#include "fleet/command.h"
#include "fleet/names.h"
#include "fleet_test.h"

namespace oam::test {
namespace {

class FleetCommands : public FleetTest {
  protected:
    void Begin() {
        StartAll();
        ASSERT_TRUE(AwaitPresence("alive", std::chrono::seconds(30)));
    }
};

TEST_F(FleetCommands, AVerbOfOneHostAnswersAsTheHostItself) {
    Begin();
    Json own = Json::parse(Tool({"board", "list", "--json"}));
    own.erase("schema");
    const Json all = FleetJson("viewer", {"board", "list", "--host", "*"});
    ASSERT_EQ(all["done"].size(), 1U) << all.dump();
    EXPECT_EQ(all["done"][0]["host"], kHostName);
    EXPECT_EQ(all["done"][0]["answer"], own);
    EXPECT_TRUE(all["refused"].empty());
    EXPECT_TRUE(all["noAnswer"].empty());
}

TEST_F(FleetCommands, BoardsAreStartedAndTheirOutcomesAwaited) {
    Begin();
    const Json good = FleetJson("operator", {"board", "start", "Good", "--host", kHostName});
    EXPECT_EQ(good["done"][0]["answer"]["boards"][0]["outcome"], "done");
    const Json bad = FleetJson("operator", {"board", "start", "Bad", "--host", kHostName}, 1);
    EXPECT_EQ(bad["refused"][0]["answer"]["boards"][0]["outcome"], "failed") << bad.dump();
    // Longer than a host may be silent: it is at work, and says so.
    const Json stuck = FleetJson(
        "operator",
        {"board", "start", "Stuck", "--timeout", "3", "--patience", "2", "--host", kHostName}, 7);
    EXPECT_EQ(stuck["refused"][0]["status"], 7) << stuck.dump();
}

TEST_F(FleetCommands, ChangesAreRecordedUnderTheCallersName) {
    Begin();
    (void)FleetJson("configurator", {"set", "Supervisor", "AutoStopEnabled=Yes", "--host", "*"});
    const Json history = Json::parse(Tool({"config", "history", "--limit", "1", "--json"}));
    const std::string user = history["history"][0]["user"];
    EXPECT_TRUE(user.starts_with("certificate configurator via ")) << user;
}

TEST_F(FleetCommands, TheServerHoldsBackWhatARoleMayNotAsk) {
    Begin();
    const Json json = FleetJson("viewer", {"board", "start", "Good", "--host", kHostName}, 5);
    EXPECT_NE(json["refused"][0]["reason"].get<std::string>().find("does not let you"),
              std::string::npos)
        << json.dump();
}

TEST_F(FleetCommands, TheHostsOwnRolesDecideInTheEnd) {
    Begin();
    home.Write("oam/roles.conf", "everyone admin\ncertificate operator viewer\n");
    daemon->Signal(SIGHUP);
    ASSERT_TRUE(Await([&] {
        return Fleet("operator", {"board", "test", "Good", "--host", kHostName}).status == 5;
    }));
    const Json json = FleetJson("operator", {"board", "start", "Good", "--host", kHostName}, 5);
    EXPECT_NE(json["refused"][0]["reason"].get<std::string>().find("needs the role operator"),
              std::string::npos)
        << json.dump();
    EXPECT_EQ(FleetJson("operator", {"board", "list", "--host", "*"})["done"].size(), 1U);
}

TEST_F(FleetCommands, NobodySpeaksUnderAnothersName) {
    Begin();
    const Json json = FleetJson("viewer", {"objects", "--host", kHostName, "--as", "admin"}, 5);
    EXPECT_EQ(json["refused"].size(), 1U) << json.dump();
}

TEST_F(FleetCommands, HostsThatDoNotAnswerAreAListOfTheirOwn) {
    Begin();
    const Json json = FleetJson("viewer", {"objects", "--host", "nobody,h.*"}, 8);
    EXPECT_EQ(json["done"].size(), 1U);
    ASSERT_EQ(json["noAnswer"].size(), 1U) << json.dump();
    EXPECT_EQ(json["noAnswer"][0]["host"], "nobody");
    daemon->Signal(SIGSTOP);
    ASSERT_TRUE(AwaitPresence("stale", std::chrono::seconds(30)));
    EXPECT_EQ(FleetJson("viewer", {"objects", "--host", "h.1"}, 3)["noAnswer"].size(), 1U);
    daemon->Signal(SIGCONT);
    ASSERT_TRUE(AwaitPresence("alive", std::chrono::seconds(30)));
    agent->Signal(SIGSTOP);
    const Json frozen = FleetJson("viewer", {"objects", "--patience", "1", "--host", "h.1"}, 3);
    EXPECT_EQ(frozen["noAnswer"].size(), 1U);
    agent->Signal(SIGCONT);
    EXPECT_EQ(Fleet("viewer", {"objects", "--host", "no*"}).status, 4);
    EXPECT_EQ(Fleet("viewer", {"objects"}).status, 2);
    EXPECT_EQ(Fleet("viewer", {"board", "start", "--host", "*"}).status, 2);
}

TEST_F(FleetCommands, TheConfigurationIsExportedAFileForEachHost) {
    Begin();
    const Json json = FleetJson("viewer", {"export", home.Path("{host}.oam"), "--host", "*"});
    EXPECT_EQ(json["done"].size(), 1U);
    EXPECT_TRUE(home.Exists("h.1.oam"));
    const Json back =
        FleetJson("admin", {"import", home.Path("h.1.oam"), "--patience", "30", "--host", "*"});
    EXPECT_EQ(back["done"].size(), 1U) << back.dump();
}

TEST_F(FleetCommands, AnyClientOfTheEngineCanAskInJson) {
    Begin();
    const auto link = LinkOf("operator");
    const auto ask = [&](const char* role, const char* verb, const std::string& data) {
        const auto answer = link->Request(fleet::CommandSubject(kHostName, role, "operator", verb),
                                          data, std::chrono::seconds(30));
        return Json::parse(fleet::DataOf(*answer), nullptr, false);
    };
    EXPECT_EQ(ask("viewer", "ListBoards", "")["boards"].size(), 3U);
    EXPECT_EQ(ask("viewer", "GetBoard", R"({"name": "Good"})")["name"], "Good");
    EXPECT_EQ(ask("operator", "StartBoard", R"({"board": "Good"})")["state"], "running");
    const auto reason = [](const Json& answer) { return answer["error"].value("reason", ""); };
    EXPECT_EQ(reason(ask("viewer", "GetBoard", R"({"name": "None"})")), "not-found");
    EXPECT_EQ(reason(ask("viewer", "GetBoard", "{")), "invalid");
    EXPECT_EQ(reason(ask("viewer", "GetBoard", R"({"nome": "x"})")), "invalid");
    EXPECT_EQ(reason(ask("viewer", "Export", "")), "invalid");
    EXPECT_EQ(reason(ask("viewer", "WatchAlerts", "")), "not-supported");
    EXPECT_EQ(reason(ask("viewer", "Attach", "")), "not-supported");
    // The subject's role is what the server has let through; a verb of another one is none of it.
    EXPECT_EQ(reason(ask("viewer", "StartBoard", R"({"board": "Good"})")), "not-permitted");
}

class FleetLineTest : public FleetTest {
  protected:
    Finished Run(const std::vector<std::string>& words) const {
        std::vector<std::string> command{OAM_TOOL};
        command.insert(command.end(), words.begin(), words.end());
        return ChildProcess(command, home.Root()).Finish();
    }
};

TEST_F(FleetLineTest, TheHelpHasTheFleetsOwnCommandsAndTheHostsVerbs) {
    const Finished help = Run({"fleet", "--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* const word :
         {"\n  hosts ", "\n  alerts ", "\n  set ", "\n  board ", "\n  doctor "})
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
    EXPECT_EQ(help.out.find("\n  monitor "), std::string::npos);
    const Finished verb = Run({"--json", "fleet", "board", "start", "--help"});
    EXPECT_NE(verb.out.find("\n  oam fleet board start --all --timeout 120 --host"),
              std::string::npos)
        << verb.out;
    EXPECT_NE(Run({"--help"}).out.find("\n  fleet "), std::string::npos);
}

TEST_F(FleetLineTest, TheShellIsOfferedTheFleetsWords) {
    EXPECT_EQ(Run({"complete", "oam fleet ho"}).out, "words\nhost\nhosts\n");
    EXPECT_EQ(Run({"complete", "oam --json fleet board sta"}).out, "words\nstart\nstatus\n");
    EXPECT_EQ(Run({"complete", "oam fleet hosts --pat"}).out, "words\n--patience\n");
    EXPECT_EQ(Run({"complete", "oam fleet --key "}).out, "files\n");
    EXPECT_EQ(Run({"complete", "oam fle"}).out, "words\nfleet\n");
}

TEST_F(FleetLineTest, SettingsMayLieInAFile) {
    engine.Start();
    MakeStreams();
    const auto viewer = engine.OptionsOf("viewer");
    home.Write("fleet.conf", "server = \"" + engine.Url() +
                                 "\"\nuser = \"viewer\"\npassword-file = \"" + viewer.back() +
                                 "\"\n");
    EXPECT_EQ(Run({"fleet", "--config", home.Path("fleet.conf"), "hosts"}).status, 0);
    home.Write("wrong.conf", "sever = \"x\"\n");
    EXPECT_EQ(Run({"fleet", "--config", home.Path("wrong.conf"), "hosts"}).status, 2);
    EXPECT_EQ(Run({"fleet", "--config", home.Path("none.conf"), "hosts"}).status, 2);
    EXPECT_EQ(Run({"fleet"}).status, 2);
}

TEST(FleetPattern, MatchesAsAShellDoes) {
    EXPECT_TRUE(fleet::HostPattern({}).Matches("any"));
    EXPECT_TRUE(fleet::HostPattern({"a*"}).Matches("ab"));
    EXPECT_FALSE(fleet::HostPattern({"a*"}).Matches("ba"));
    EXPECT_TRUE(fleet::HostPattern({"x,y?"}).Matches("y1"));
    EXPECT_TRUE(fleet::HostPattern({"x", "y"}).Matches("y"));
    EXPECT_TRUE(fleet::HostPattern({"h[1-3]"}).Matches("h2"));
    EXPECT_TRUE(fleet::HostPattern({"h[1]"}).Matches("h[1]")) << "a name is a name";
    EXPECT_EQ(fleet::HostPattern({"x"}).One(), "x");
    EXPECT_EQ(fleet::HostPattern({"x*"}).One(), "");
    EXPECT_EQ(fleet::HostPattern({"x,y*", "z"}).Names(), (std::vector<std::string>{"x", "z"}));
}

TEST(FleetLists, TheStatusIsWhatTheHostsAgreeOn) {
    using Results = std::vector<fleet::HostResult>;
    EXPECT_EQ(fleet::StatusOf(Results{{"a", kDone, {}}, {"b", kDone, {}}}), kDone);
    EXPECT_EQ(fleet::StatusOf(Results{{"a", kDone, {}}, {"b", kNoDaemon, {}}}), kPartlyDone);
    EXPECT_EQ(fleet::StatusOf(Results{{"a", kNotPermitted, {}}, {"b", kNotPermitted, {}}}),
              kNotPermitted);
    EXPECT_EQ(fleet::StatusOf(Results{{"a", kNotPermitted, {}}, {"b", kNoDaemon, {}}}), kFailed);
}

}  // namespace
}  // namespace oam::test
