// Whether a hub keeps up with the heartbeats of 10,000 hosts, and what they cost it: what
// docs/scale.md reckons with. One connection sends them all, as one host; for the servers it is the
// same work but for the connections, which the other measurement has.
#include <gtest/gtest.h>

#include "await.h"
#include "fleet.h"
#include "points.h"
#include "process_cost.h"

namespace oam::torture {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kBucket = "KV_oam_presence";
constexpr const char* kSubject = "$KV.oam_presence.h001";

TEST(FleetBeats, OfTenThousandHostsAreKeptThreeTimes) {
    const int rate = 10'000;
    const int seconds = IsFull() ? 20 : 1;
    Fleet fleet(1);
    fleet.Hub().Start();
    fleet.Init();
    const test::Observer keeper = fleet.Keeper();
    const test::Observer host(fleet.Hub().Urls(), fleet.Site().PapersOf(fleet.At(0).Certificate()));
    const auto cpu = [&] {
        double sum = 0;
        for (int i = 0; i < test::Hub::kServers; ++i)
            sum += CostOf(fleet.Hub().At(i).Pid()).cpuSeconds;
        return sum;
    };
    // As long as a beat of a name of usual length.
    const std::string beat(180, 'b');
    const double before = cpu();
    const auto begin = Clock::now();
    constexpr int kSteps = 100;  // a second
    for (int step = 0; step < seconds * kSteps; ++step) {
        for (int i = 0; i < rate / kSteps; ++i)
            ASSERT_EQ(natsConnection_Publish(host.Connection(), kSubject, beat.data(),
                                             static_cast<int>(beat.size())),
                      NATS_OK);
        std::this_thread::sleep_until(begin +
                                      (step + 1) * std::chrono::milliseconds(1000) / kSteps);
    }
    const auto all = static_cast<std::uint64_t>(rate * seconds);
    EXPECT_TRUE(test::Await([&] {
        const auto facts = keeper.Facts(kBucket);
        return facts && facts->last >= all;
    })) << "beats are lost";
    const double time = std::chrono::duration<double>(Clock::now() - begin).count();
    const double each = (cpu() - before) * 1e6 / static_cast<double>(all);
    TellFigures("fleet beats", Grouped(all) + " kept three times at " +
                                   Grouped(static_cast<unsigned long>(all / time)) + " a second, " +
                                   std::to_string(static_cast<int>(each)) +
                                   " us of the three servers each");
}

}  // namespace
}  // namespace oam::torture
