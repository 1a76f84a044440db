// What the rights of the sample hub let each role do, tried with each role's certificate.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "await.h"
#include "child_process.h"
#include "hub.h"
#include "leaf.h"
#include "observer.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

// One hub for all of them: its start is what takes time.
class SampleRights : public ::testing::Test {
  protected:
    struct World {
        World() {
            for (const char* line : {"host h1.example.net h1", "host h2.example.net h2",
                                     "viewer see.example.net", "operator run.example.net",
                                     "configurator set.example.net", "admin all.example.net"})
                site.Allow(line);
            hub = std::make_unique<Hub>(site);
            hub->Start();
            const Observer keeper(hub->Urls(), site.PapersOf(kKeeper));
            keeper.MakeStream("OAM_ALERTS", "oam.alerts.*");
            for (const char* bucket : {"oam_hosts", "oam_boards", "oam_presence"})
                keeper.MakeStream(std::string("KV_") + bucket, std::string("$KV.") + bucket + ".>");
        }
        Site site;
        std::unique_ptr<Hub> hub;
    };
    static void SetUpTestSuite() { world = new World; }
    static void TearDownTestSuite() { delete world; }

    static Observer As(const std::string& name) {
        return Observer(world->hub->Urls(), world->site.PapersOf(name));
    }

    // Whether the server lets it pass, not what becomes of it.
    static bool MayPublish(const Observer& client, const std::string& subject) {
        EXPECT_EQ(natsConnection_PublishString(client.Connection(), subject.c_str(), "x"), NATS_OK);
        return !IsDenied(client, subject);
    }
    static bool MaySubscribe(const Observer& client, const std::string& subject) {
        natsSubscription* subscription = nullptr;
        EXPECT_EQ(natsConnection_SubscribeSync(&subscription, client.Connection(), subject.c_str()),
                  NATS_OK);
        const bool may = !IsDenied(client, subject);
        natsSubscription_Destroy(subscription);
        return may;
    }
    static bool IsDenied(const Observer& client, const std::string& subject) {
        return client.LastError().find('"' + subject + '"') != std::string::npos;
    }

    static World* world;
};

SampleRights::World* SampleRights::world = nullptr;

TEST_F(SampleRights, LetAHostWriteUnderItsOwnNameAlone) {
    const Observer host = As("h1.example.net");
    EXPECT_TRUE(host.Publish("oam.alerts.h1", "mine"));
    for (const char* bucket : {"oam_hosts", "oam_boards", "oam_presence"}) {
        const std::string prefix = std::string("$KV.") + bucket;
        EXPECT_TRUE(host.Publish(prefix + ".h1", "mine")) << bucket;
        EXPECT_FALSE(MayPublish(host, prefix + ".h2")) << bucket;
    }
    for (const char* foreign :
         {"oam.alerts.h2", "oam.command.h2.viewer.h1=2Eexample=2Enet.boards",
          "$JS.API.STREAM.DELETE.OAM_ALERTS", "$JS.API.STREAM.PURGE.OAM_ALERTS",
          "$JS.API.STREAM.UPDATE.OAM_ALERTS", "$JS.API.STREAM.MSG.DELETE.OAM_ALERTS",
          "$JS.API.STREAM.MSG.GET.OAM_ALERTS", "$JS.API.CONSUMER.CREATE.OAM_ALERTS",
          "$JS.API.DIRECT.GET.OAM_ALERTS.oam.alerts.h2"})
        EXPECT_FALSE(MayPublish(host, foreign)) << foreign;
}

TEST_F(SampleRights, LetAHostHearItsOwnCommandsAndAnswersAlone) {
    const Observer host = As("h1.example.net");
    EXPECT_TRUE(MaySubscribe(host, "oam.command.h1.*.*.*"));
    for (const char* foreign : {"oam.command.h2.*.*.*", "oam.command.>", "_INBOX.>",
                                "_INBOX.h2=2Eexample=2Enet.>", "oam.alerts.>", ">"})
        EXPECT_FALSE(MaySubscribe(host, foreign)) << foreign;
}

TEST_F(SampleRights, LetACallerAskUnderItsOwnNameAndUpToItsRole) {
    const std::vector<std::pair<std::string, std::string>> roles{
        {"viewer", "see"}, {"operator", "run"}, {"configurator", "set"}, {"admin", "all"}};
    for (std::size_t i = 0; i < roles.size(); ++i) {
        const Observer caller = As(roles[i].second + ".example.net");
        const std::string name = roles[i].second + "=2Eexample=2Enet";
        for (std::size_t asked = 0; asked < roles.size(); ++asked) {
            const std::string subject = "oam.command.h1." + roles[asked].first + ".";
            EXPECT_EQ(MayPublish(caller, subject + name + ".verb"), asked <= i)
                << name << ' ' << subject;
            EXPECT_FALSE(MayPublish(caller, subject + "another=2Eexample=2Enet.verb"))
                << name << ' ' << subject;
        }
        for (const char* foreign :
             {"oam.alerts.h1", "$KV.oam_boards.h1", "$JS.API.STREAM.DELETE.OAM_ALERTS"})
            EXPECT_FALSE(MayPublish(caller, foreign)) << name << ' ' << foreign;
    }
}

TEST_F(SampleRights, LetAViewerReadTheStreamAndNobodysAnswers) {
    EXPECT_TRUE(As("h2.example.net").Publish("oam.alerts.h2", "news"));
    const Observer viewer = As("see.example.net");
    const auto records = viewer.Records("OAM_ALERTS", "oam.alerts.h2");
    ASSERT_FALSE(records.empty());
    EXPECT_EQ(records.back().data, "news");
    EXPECT_FALSE(MaySubscribe(viewer, "_INBOX.>"));
    EXPECT_FALSE(MaySubscribe(viewer, "oam.command.>"));
}

TEST_F(SampleRights, HoldForALeafAsForTheHostWhoseCertificateItHas) {
    Leaf leaf(world->site, "h1", "h1.example.net", world->hub->LeafUrls());
    leaf.Server().Start();
    leaf.Server().AwaitLog("Leafnode connection created");
    const Observer agent(leaf.Url(), world->site.PapersOf("h1.example.net"));
    EXPECT_TRUE(
        Await([&] { return agent.Publish("oam.alerts.h1", "through the leaf", "leaf+1"); }));
    // Without the domain a leaf keeps it to itself.
    EXPECT_TRUE(agent.Publish("$JS.hub.API.$KV.oam_boards.h1", "through the leaf"));
    EXPECT_FALSE(agent.Publish("$JS.hub.API.$KV.oam_boards.h2", "in another's name"));
    EXPECT_FALSE(agent.Publish("oam.alerts.h2", "in another's name", "leaf+2"));
    const auto records = As(kKeeper).Records("OAM_ALERTS");
    EXPECT_EQ(std::count_if(records.begin(), records.end(),
                            [](const Kept& each) { return each.id.starts_with("leaf+"); }),
              1);
    // A command's way there and its answer's way back.
    natsSubscription* commands = nullptr;
    ASSERT_EQ(natsConnection_SubscribeSync(&commands, agent.Connection(), "oam.command.h1.*.*.*"),
              NATS_OK);
    std::thread host([&] {
        natsMsg* asked = nullptr;
        ASSERT_EQ(natsSubscription_NextMsg(&asked, commands, 60'000), NATS_OK);
        EXPECT_EQ(natsConnection_PublishString(agent.Connection(), natsMsg_GetReply(asked), "done"),
                  NATS_OK);
        natsMsg_Destroy(asked);
    });
    const Observer caller = As("run.example.net");
    EXPECT_TRUE(Await([&] {
        return caller.Request("oam.command.h1.operator.run=2Eexample=2Enet.start", "", 1000) ==
               "done";
    }));
    host.join();
    natsSubscription_Destroy(commands);
}

TEST_F(SampleRights, LetNobodyThroughALeafWhoIsNotItsHost) {
    Leaf leaf(world->site, "h2", "h2.example.net", world->hub->LeafUrls());
    leaf.Server().Start();
    EXPECT_THAT(Observer::WhyRefused(leaf.Url(), world->site.PapersOf("h1.example.net")),
                HasSubstr("Authorization Violation"));
    Papers none = world->site.PapersOf("h2.example.net");
    none.certificate.clear();
    EXPECT_NE(Observer::WhyRefused(leaf.Url(), none), "");
}

// The list is read by people who make mistakes; rights that are half made would be taken for whole.
TEST(RightsList, IsRefusedWithItsLineWhenItIsWrong) {
    const Site site;
    for (const auto& [line, reason] : std::vector<std::pair<std::string, std::string>>{
             {"host h9.example.net", "a host has a certificate and a name"},
             {"viewer a.example.net b.example.net", "one certificate in a line"},
             {"guest a.example.net", "neither host, viewer"},
             {"viewer a\"b", "not the name of a certificate"},
             {"viewer see.example.net", "is in line 1 already"},
             {"host h9.example.net h1", "is in line 2 already"}}) {
        site.Write("list", "viewer see.example.net\nhost h1.example.net h1\n" + line + "\n");
        const Finished made =
            ChildProcess({OAM_FLEET_RIGHTS, site.Path("list")}, site.Path("")).Finish();
        EXPECT_EQ(made.status, 1) << line;
        EXPECT_THAT(made.err, HasSubstr("list:3: ")) << line;
        EXPECT_THAT(made.err, HasSubstr(reason)) << line;
    }
}

}  // namespace
}  // namespace oam::test
