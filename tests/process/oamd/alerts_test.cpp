// Alerts without gaps, and gaps that are said.
#include <thread>

#include "daemon_test.h"

namespace oam::test {
namespace {

class DaemonAlerts : public DaemonTest {
  protected:
    void SetUp() override { Start(); }

    static void Notify(Client& client, const std::string& text) {
        v1::NotifyAlertRequest request;
        request.set_code(0x40002001);
        request.set_source("test");
        request.set_text(text);
        v1::NotifyAlertResponse response;
        const auto status =
            Call(*client.alerts, &v1::Alerts::Stub::NotifyAlert, request, &response);
        EXPECT_TRUE(status.ok()) << status.error_message();
    }

    static std::uint64_t Newest(Client& client) {
        v1::HostInfo info;
        EXPECT_TRUE(Call(*client.host, &v1::Host::Stub::GetHost, v1::GetHostRequest(), &info).ok());
        return info.newest_alert();
    }
};

TEST_F(DaemonAlerts, ReachEveryWatcherOnceAndInOrder) {
    constexpr int kWatchers = 20, kAlerts = 200;
    Client client(home);
    const std::uint64_t before = Newest(client);
    std::vector<std::thread> watchers;
    for (int i = 0; i < kWatchers; ++i)
        watchers.emplace_back([&] {
            Client own(home);
            grpc::ClientContext context;
            v1::WatchAlertsRequest request;
            request.set_after(before);
            request.mutable_filter()->set_source("TEST");
            const auto stream = own.alerts->WatchAlerts(&context, request);
            int seen = 0;
            for (v1::WatchAlertsResponse event; seen < kAlerts && stream->Read(&event);) {
                EXPECT_FALSE(event.has_gap());
                if (!event.has_alert()) continue;
                EXPECT_EQ(event.alert().text(), std::to_string(seen));
                ++seen;
            }
            EXPECT_EQ(seen, kAlerts);
            context.TryCancel();
        });
    for (int i = 0; i < kAlerts; ++i) Notify(client, std::to_string(i));
    for (std::thread& watcher : watchers) watcher.join();
}

TEST_F(DaemonAlerts, GoOnWithHigherNumbersAfterAKillAndTheGapIsSaid) {
    std::uint64_t last = 0;
    {
        Client client(home);
        Notify(client, "before");
        last = Newest(client);
    }
    Kill();
    StartAgain();
    Client client(home);
    Notify(client, "after");
    grpc::ClientContext context;
    v1::WatchAlertsRequest request;
    request.set_after(last);
    request.mutable_filter()->set_source("test");
    const auto stream = client.alerts->WatchAlerts(&context, request);
    bool isGapSaid = false;
    for (v1::WatchAlertsResponse event; stream->Read(&event);) {
        isGapSaid = isGapSaid || event.has_gap();
        if (event.has_alert() && event.alert().text() == "after") {
            EXPECT_GT(event.alert().sequence(), last);
            break;
        }
    }
    EXPECT_TRUE(isGapSaid);
    context.TryCancel();
}

TEST_F(DaemonAlerts, AreThereAgainAfterAnOrderlyRestart) {
    std::uint64_t before = 0;
    {
        Client client(home);
        before = Newest(client);
        Notify(client, "kept");
    }
    End();
    StartAgain();
    Client client(home);
    v1::ListAlertsRequest request;
    request.set_after(before);
    request.mutable_filter()->set_source("test");
    v1::ListAlertsResponse response;
    ASSERT_TRUE(Call(*client.alerts, &v1::Alerts::Stub::ListAlerts, request, &response).ok());
    ASSERT_EQ(response.alerts_size(), 1);
    EXPECT_EQ(response.alerts(0).text(), "kept");
    EXPECT_FALSE(response.has_gap());
}

TEST_F(DaemonAlerts, OfAClientAreCheckedBeforeTheyArePassedOn) {
    Client client(home);
    v1::NotifyAlertRequest request;
    request.set_source(std::string("a\0b", 3));
    v1::NotifyAlertResponse response;
    EXPECT_EQ(Call(*client.alerts, &v1::Alerts::Stub::NotifyAlert, request, &response).error_code(),
              grpc::StatusCode::INVALID_ARGUMENT);
    request.set_source(std::string(128, 's'));
    EXPECT_EQ(Call(*client.alerts, &v1::Alerts::Stub::NotifyAlert, request, &response).error_code(),
              grpc::StatusCode::INVALID_ARGUMENT);
}

TEST_F(DaemonAlerts, AreNotHeldUpByAWatcherThatDoesNotRead) {
    Client stuck(home);
    grpc::ClientContext context;
    v1::WatchAlertsRequest request;
    request.set_after(0);
    const auto stream = stuck.alerts->WatchAlerts(&context, request);
    Client client(home);
    for (int i = 0; i < 2000; ++i) Notify(client, std::string(200, 'x'));
    EXPECT_GE(Newest(client), 2000u);
    context.TryCancel();
}

}  // namespace
}  // namespace oam::test
