// Fifty hosts, and the stream's leader killed while their alerts flow.
#include <gtest/gtest.h>

#include <random>

#include "await.h"
#include "fleet.h"
#include "points.h"
#include "stream_ledger.h"

namespace oam::torture {
namespace {

class FleetStream : public ::testing::Test {
  protected:
    // Raises so many alerts at each host, all hosts in turn, from a few threads at once; `between`
    // is called on the calling thread after each so many of all.
    template <class Between>
    void Flow(Fleet& fleet, int alerts, int steps, Between between) {
        constexpr int kThreads = 4;
        std::atomic<int> raised{0};
        const int all = alerts * static_cast<int>(fleet.Size());
        std::vector<std::thread> threads;
        for (std::size_t t = 0; t < kThreads; ++t)
            threads.emplace_back([&, t] {
                for (int i = 0; i < alerts; ++i)
                    for (std::size_t host = t; host < fleet.Size(); host += kThreads) {
                        EXPECT_TRUE(fleet.At(host).Raise("number " + std::to_string(i)));
                        ++raised;
                    }
            });
        for (int step = 1; step <= steps; ++step) {
            EXPECT_TRUE(test::Await([&] { return raised >= all / (steps + 1) * step; }));
            between();
        }
        for (std::thread& thread : threads) thread.join();
    }
};

TEST_F(FleetStream, HasEveryAlertOnceWhenItsLeaderIsKilledWhileTheyFlow) {
    const unsigned long seed = Seed();
    std::mt19937_64 random(seed);
    const int kills = IsFull() ? 20 : 2;
    const int alerts = IsFull() ? 400 : 30;
    Fleet fleet(50);
    fleet.Start();
    int agents = 0;
    Flow(fleet, alerts, kills, [&] {
        const int leader = fleet.Hub().LeaderOf("OAM_ALERTS");
        fleet.Hub().At(leader).Kill();
        // Some lose their agent at the same moment: between an alert's acknowledgement and whatever
        // the agent would have noted.
        for (int i = 0; i < 3; ++i, ++agents) {
            test::Host& host = fleet.At(random() % fleet.Size());
            host.KillAgent();
            host.StartAgent();
        }
        EXPECT_GE(fleet.Hub().LeaderOf("OAM_ALERTS"), 0);
        fleet.Hub().Start();
        fleet.Hub().AwaitWhole();
    });
    const StreamLedger ledger = CompareStreamWithHosts(fleet);
    EXPECT_EQ(ledger.faults, std::vector<std::string>()) << "seed " << seed;
    EXPECT_EQ(ledger.inGaps, 0u);
    EXPECT_GE(ledger.alerts, static_cast<std::uint64_t>(alerts) * fleet.Size());
    TellFigures("fleet leader kills", Grouped(fleet.Size()) + " hosts, " + std::to_string(kills) +
                                          " leaders and " + std::to_string(agents) +
                                          " agents killed, " + Grouped(ledger.alerts) +
                                          " alerts, each once in the stream");
}

}  // namespace
}  // namespace oam::torture
