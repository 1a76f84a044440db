// The hub as it ships: three servers of which any one may be lost, with nobody let in without a
// name.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "await.h"
#include "hub.h"
#include "observer.h"

namespace oam::test {
namespace {

constexpr const char* kHost = "h1.example.net";

class SampleHub : public ::testing::Test {
  protected:
    SampleHub() {
        site.Allow(std::string("host ") + kHost + " h1");
        hub = std::make_unique<Hub>(site);
        hub->Start();
    }

    Site site;
    std::unique_ptr<Hub> hub;
};

TEST_F(SampleHub, KeepsWhatItAcknowledgedWhenTheLeaderIsKilled) {
    const Observer keeper(hub->Urls(), site.PapersOf(kKeeper));
    keeper.MakeStream("OAM_ALERTS", "oam.alerts.*");
    for (int i = 0; i < 20; ++i) {
        if (i == 10) hub->At(hub->LeaderOf("OAM_ALERTS")).Kill();
        const std::string number = std::to_string(i);
        EXPECT_TRUE(Await([&] { return keeper.Publish("oam.alerts.h1", number, number); }));
    }
    hub->Start();
    hub->AwaitWhole();
    const auto records = keeper.Records("OAM_ALERTS");
    std::vector<std::string> kept, published;
    for (const Kept& each : records) kept.push_back(each.data);
    for (int i = 0; i < 20; ++i) published.push_back(std::to_string(i));
    EXPECT_EQ(kept, published);
    EXPECT_EQ(keeper.Facts("OAM_ALERTS")->replicas, 3);
}

TEST_F(SampleHub, LetsNobodyInWithoutACertificateOfItsOwnThatIsListed) {
    const Papers listed = site.PapersOf(kHost);
    EXPECT_EQ(Observer::WhyRefused(hub->Url(0), listed), "");
    Papers none = listed;
    none.certificate.clear();
    EXPECT_NE(Observer::WhyRefused(hub->Url(0), none), "");
    EXPECT_NE(Observer::WhyRefused(hub->Url(0), site.ForeignPapersOf(kHost)), "");
    EXPECT_THAT(Observer::WhyRefused(hub->Url(0), site.PapersOf("stranger.example.net")),
                ::testing::HasSubstr("Authorization Violation"));
}

TEST_F(SampleHub, TakesUpANewHostWithoutARestart) {
    const Papers added = site.PapersOf("h2.example.net");
    EXPECT_NE(Observer::WhyRefused(hub->Url(1), added), "");
    site.Allow("host h2.example.net h2");
    hub->RenewRights();
    EXPECT_EQ(Observer::WhyRefused(hub->Url(1), added), "");
}

}  // namespace
}  // namespace oam::test
