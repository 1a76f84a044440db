// The daemon under working clients, killed at random moments, in its start too: what it
// acknowledged is there in its next life, no number is given twice, and what ran is unknown.
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <random>

#include "busy_clients.h"
#include "daemon_test.h"
#include "torture/crash/points.h"

namespace oam::torture {
namespace {

// Under a sanitizer a life is over before much of it is done.
#ifdef OAM_SANITIZED
constexpr std::size_t kSlower = 10;
#else
constexpr std::size_t kSlower = 1;
#endif

using std::chrono::microseconds;

constexpr unsigned kQuickKills = 40;
constexpr unsigned kFullKills = 1000;

std::string chassis() {
    std::string text;
    for (int i = 0; i < kBoards; ++i)
        text += "board: " + BoardName(i) +
                "\nproduct: SIM-E1\nbus: 1\nslot: " + std::to_string(i + 1) +
                "\nstart-time: 2ms\ntest-time: 5ms\nstart: ok, fail, ok, hang 30ms\n\n";
    return text;
}

class KilledDaemon : public test::DaemonTest {
  protected:
    KilledDaemon() : DaemonTest(std::filesystem::exists("/dev/shm") ? "/dev/shm" : "/tmp") {}

    // In a life that nobody kills.
    void LookAtWhatIsLeft(std::mt19937_64& random) {
        StartAgain();
        test::Client client(home);
        const std::uint64_t newest = seen.Newest();
        LookAtBoards(client);
        LookAtAlerts(client, newest);
        LookAtOperations(client, random);
        for (const std::string& file : home.List("oam/cfg"))
            if (!file.ends_with(".xmo") && file != "sim.chassis") seen.Fault(file + " lies about");
        Tool({"check"});
    }

    Seen seen;

  private:
    void LookAtBoards(test::Client& client) {
        for (int i = 0; i < kBoards; ++i) {
            v1::ReadObjectRequest request;
            request.set_name(BoardName(i));
            v1::ReadObjectResponse response;
            const auto status =
                test::Call(*client.objects, &v1::Objects::Stub::ReadObject, request, &response);
            std::string value, product;
            for (const auto& keyword : response.keywords()) {
                if (keyword.name() == "Driver.BoardId") value = keyword.value();
                if (keyword.name() == "Product") product = keyword.value();
            }
            if (!status.ok() || product != "SIM-E1") seen.Fault(BoardName(i) + " is not whole");
            seen.Found(BoardName(i), value);
        }
    }

    void LookAtAlerts(test::Client& client, std::uint64_t newest) {
        v1::NotifyAlertRequest notify;
        notify.set_code(0x40000001);
        notify.set_source("rig");
        notify.set_text("a new life");
        v1::NotifyAlertResponse nothing;
        EXPECT_TRUE(
            test::Call(*client.alerts, &v1::Alerts::Stub::NotifyAlert, notify, &nothing).ok());
        grpc::ClientContext context;
        v1::WatchAlertsRequest request;
        request.set_after(seenInBook_);
        const auto stream = client.alerts->WatchAlerts(&context, request);
        bool isNew = false;
        for (v1::WatchAlertsResponse news; !isNew && stream->Read(&news);) {
            if (!news.has_alert()) continue;
            seen.Alert(news.alert());
            isNew = news.alert().text() == "a new life" && news.alert().sequence() > newest;
            seenInBook_ = news.alert().sequence();
        }
        if (!isNew) seen.Fault("numbers do not go on behind " + std::to_string(newest));
        context.TryCancel();
    }

    // Those of the last life, and some of all others.
    void LookAtOperations(test::Client& client, std::mt19937_64& random) {
        constexpr std::size_t kLookedAt = 50;
        std::vector<std::string> ids = seen.Operations();
        std::shuffle(ids.begin(), ids.end(), random);
        std::stable_partition(ids.begin(), ids.end(),
                              [this](const auto& id) { return looked_.count(id) == 0; });
        const std::size_t fresh = ids.size() - looked_.size();
        ids.resize(std::min(ids.size(), fresh + kLookedAt));
        for (const std::string& id : ids) {
            v1::GetOperationRequest request;
            request.set_id(id);
            v1::Operation operation;
            const auto status = test::Call(*client.operations, &v1::Operations::Stub::GetOperation,
                                           request, &operation);
            if (!status.ok()) seen.Fault("operation " + id + ": " + status.error_message());
            if (status.ok()) seen.Told(operation, true);
            looked_.insert(id);
        }
    }

    std::set<std::string> looked_;
    std::uint64_t seenInBook_ = 0;
};

TEST_F(KilledDaemon, KeepsWhatItAcknowledgedAndGivesNoNumberTwice) {
    const unsigned long seed = Seed();
    std::mt19937_64 random(seed);
    Start(chassis());
    for (int i = 0; i < kBoards; ++i) {
        Tool({"set", BoardName(i), "Driver.BoardId=first"});
        seen.Attempt(BoardName(i), "first");
        seen.Acknowledge(BoardName(i), "first");
    }
    End();
    const unsigned kills = IsFull() ? kFullKills : kQuickKills;
    unsigned inStart = 0;
    for (unsigned i = 0; i < kills && seen.Faults().empty(); ++i) {
        Launch();
        {
            const BusyClients clients(home, seen, random());
            // A start takes some hundredths of a second; most deaths are behind it.
            constexpr long kLongest = 300000;
            const bool isEarly = i % 4 == 0;
            inStart += isEarly ? 1 : 0;
            const long longest = isEarly ? kLongest / 6 : kLongest;
            std::this_thread::sleep_for(
                microseconds(random() % static_cast<unsigned long>(longest)));
            Kill();
        }
        LookAtWhatIsLeft(random);
        if (i % 2 == 0)
            End();
        else
            Kill();
    }
    EXPECT_EQ(seen.Faults(), std::vector<std::string>()) << "OAM_TORTURE_SEED=" << seed;
    // Else nothing was tried.
    EXPECT_GT(seen.Changes(), kills / kSlower);
    EXPECT_GT(seen.Operations().size(), kills / kSlower);
    TellFigures("daemon kills", Grouped(kills) + " kills (" + Grouped(inStart) +
                                    " of them early), " + Grouped(seen.Changes()) +
                                    " acknowledged changes, " + Grouped(seen.Operations().size()) +
                                    " operations, " + Grouped(seen.Alerts()) + " alerts, " +
                                    Grouped(seen.Faults().size()) + " lost or wrong");
}

}  // namespace
}  // namespace oam::torture
