// Which servers an agent works through.
#include <signal.h>

#include "fleet/link/stream.h"
#include "fleet_test.h"
#include "support/http.h"

namespace oam::test {
namespace {

class FleetLink : public FleetTest {
  protected:
    // What the agent says of such a server, and that it has told it nothing.
    void ExpectRefused(Engine::Rights rights, const std::string& why) {
        engine.Start(rights);
        StartAgent();
        agent->AwaitError(why);
        natsConnection* made = nullptr;
        natsOptions* given = nullptr;
        ASSERT_EQ(natsOptions_Create(&given), NATS_OK);
        const fleet::OptionsHandle owned(given);
        ASSERT_EQ(natsOptions_SetURL(given, engine.Url().c_str()), NATS_OK);
        ASSERT_EQ(natsOptions_SetUserInfo(given, "host-1", "secret of host-1"), NATS_OK);
        ASSERT_EQ(natsConnection_Connect(&made, given), NATS_OK);
        const fleet::ConnectionHandle connection(made);
        natsSubscription* heard = nullptr;
        ASSERT_EQ(natsConnection_SubscribeSync(&heard, made, "$KV.>"), NATS_OK);
        const fleet::SubscriptionHandle subscription(heard);
        natsMsg* message = nullptr;
        EXPECT_EQ(natsSubscription_NextMsg(&message, heard, 2500), NATS_TIMEOUT);
        natsMsg_Destroy(message);
    }
};

TEST_F(FleetLink, AServerWithoutUsersIsRefused) {
    ExpectRefused(Engine::Rights::kOpen, "lets anyone in");
}

TEST_F(FleetLink, AServerThatHasAUserForStrangersIsRefused) {
    ExpectRefused(Engine::Rights::kStrangers, "lets anyone in");
}

TEST_F(FleetLink, AServerThatLetsHostsCommandHostsIsRefused) {
    ExpectRefused(Engine::Rights::kNone, "lets a host command hosts");
}

TEST_F(FleetLink, TheToolAsksNoOpenServerEither) {
    engine.Start(Engine::Rights::kOpen);
    const Finished run = Fleet("viewer", {"hosts"});
    EXPECT_EQ(run.status, 5);
    EXPECT_NE(run.err.find("lets anyone in"), std::string::npos) << run.err;
}

TEST_F(FleetLink, AServerThatIsAwayIsFoundWhenItComes) {
    engine.Start();
    MakeStreams();
    Start(kMixedChassis);
    engine.Stop();
    StartAgent();
    agent->AwaitError("no link to the fleet");
    engine.Start();
    EXPECT_TRUE(AwaitPresence("alive", std::chrono::seconds(30)));
}

TEST_F(FleetLink, WrongUseIsSaid) {
    const auto tried = [&](std::vector<std::string> words) {
        words.insert(words.begin(), OAM_FLEETD);
        const Finished run = ChildProcess(words, home.Root()).Finish();
        EXPECT_EQ(run.status, 2) << run.err;
        return run.err;
    };
    EXPECT_NE(tried({}).find("no server is named"), std::string::npos);
    EXPECT_NE(tried({"--server", "nats://127.0.0.1:1"}).find("nothing tells the server who"),
              std::string::npos);
    EXPECT_NE(tried({"--server", "nats://10.1.2.3:1", "--user", "u", "--password-file", "f"})
                  .find("is not on this machine"),
              std::string::npos);
    EXPECT_NE(tried({"--server", "nats://u:p@127.0.0.1:1", "--user", "u", "--password-file", "f"})
                  .find("holds no user"),
              std::string::npos);
    EXPECT_NE(tried({"--server", "tls://h:1", "--certificate", "c", "--key", "k"})
                  .find("needs --authorities"),
              std::string::npos);
    EXPECT_NE(tried({"--server", "tls://h:1", "--certificate", "c"}).find("go together"),
              std::string::npos);
}

TEST_F(FleetLink, TheMetricsTellHowTheAgentIs) {
    agentOptions = {"--metrics", "127.0.0.1:0"};
    StartAll();
    Raise("one", 3);
    ASSERT_TRUE(AwaitInStream(Newest()));
    const std::string told = agent->AwaitErrorLine("serves metrics at ");
    const auto text = [&] { return BodyOf(HttpGet(told.substr(0, told.find('\n')), "/metrics")); };
    const std::string count = std::to_string(Newest());
    EXPECT_TRUE(Await([&] {
        const std::string now = text();
        return now.find("\noam_fleet_alerts_total " + count + '\n') != now.npos &&
               now.find("\noam_fleet_linked 1\n") != now.npos &&
               now.find("\noam_fleet_daemon_answering 1\n") != now.npos &&
               now.find("\noam_fleet_alert_lag 0\n") != now.npos &&
               now.find("\noam_fleet_records_total{bucket=\"boards\"} ") != now.npos;
    })) << text();
    engine.Stop();
    EXPECT_TRUE(Await([&] { return text().find("\noam_fleet_linked 0\n") != std::string::npos; }))
        << text();
}

TEST_F(FleetLink, TheStreamsAreMadeOnceAndChangedLater) {
    engine.Start();
    const auto made = [&](const std::vector<std::string>& words) {
        Json all = Json::array();
        const Json told = FleetJson("keeper", words);
        for (const Json& stream : told["streams"]) all.push_back(stream["isNew"]);
        return all;
    };
    EXPECT_EQ(made({"init", "--replicas", "1"}), Json({true, true, true, true}));
    EXPECT_EQ(made({"init", "--replicas", "1"}), Json({false, false, false, false}));
    (void)made({"init", "--replicas", "1", "--alert-days", "7", "--presence-minutes", "1"});
    const auto link = LinkOf("keeper");
    for (const auto& [stream, seconds] :
         {std::pair{"OAM_ALERTS", 7 * 86400}, std::pair{"KV_oam_presence", 60}}) {
        jsStreamInfo* info = nullptr;
        ASSERT_EQ(js_GetStreamInfo(&info, link->Streams(), stream, nullptr, nullptr), NATS_OK);
        const fleet::StreamInfoHandle owned(info);
        EXPECT_EQ(info->Config->MaxAge, std::int64_t{1'000'000'000} * seconds) << stream;
    }
}

// Whoever has no rights to it hears so, and nothing is half done.
TEST_F(FleetLink, OnlyTheKeeperMakesStreams) {
    engine.Start();
    EXPECT_NE(Fleet("admin", {"init", "--replicas", "1"}).status, 0);
    EXPECT_FALSE(fleet::LookAtStream(*LinkOf("keeper"), "OAM_ALERTS"));
}

}  // namespace
}  // namespace oam::test
