// The whole hub is away for a while: the hosts work on, and the fleet catches up by itself.
#include <gtest/gtest.h>

#include "fleet.h"
#include "points.h"
#include "stream_ledger.h"

namespace oam::torture {
namespace {

TEST(FleetOutage, HostsWorkOnWithoutTheHubAndCatchUpByThemselves) {
    const int alerts = IsFull() ? 3000 : 100;
    Fleet fleet(IsFull() ? 50 : 8);
    fleet.Start();
    fleet.Hub().Kill();
    for (std::size_t i = 0; i < fleet.Size(); ++i)
        for (int number = 0; number < alerts; ++number)
            EXPECT_TRUE(fleet.At(i).Raise("without a hub " + std::to_string(number)));
    // Two whose daemon and agent end and come back meanwhile: nothing of what they owe is in
    // memory. One that is killed passes over the numbers that it had put aside, and tells so.
    for (std::size_t i = 0; i < 2; ++i) {
        fleet.At(i).KillAgent();
        if (i == 0)
            fleet.At(i).EndDaemon();
        else
            fleet.At(i).KillDaemon();
        fleet.At(i).StartDaemon();
        fleet.At(i).StartAgent();
    }
    const auto back = std::chrono::steady_clock::now();
    fleet.Hub().Start();
    ASSERT_TRUE(AwaitCaughtUp(fleet)) << fleet.At(0).AgentLog();
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - back).count();
    const StreamLedger ledger = CompareStreamWithHosts(fleet);
    EXPECT_EQ(ledger.faults, std::vector<std::string>());
    EXPECT_EQ(ledger.hostsWithGaps, std::set<std::string>{"h002"});
    TellFigures("fleet outage", Grouped(fleet.Size()) + " hosts, " + Grouped(ledger.alerts) +
                                    " alerts while the hub was away, caught up in " +
                                    std::to_string(static_cast<int>(seconds)) + " s");
}

TEST(FleetOutage, WhatARingCouldNotHoldUntilThenIsToldAsAGap) {
    constexpr int kKept = 1000;  // the least that a daemon keeps on its disk
    Fleet fleet(1);
    fleet.At(0).KeepAlerts(kKept);
    fleet.Start();
    fleet.Hub().Kill();
    for (int number = 0; number < 3 * kKept; ++number)
        ASSERT_TRUE(fleet.At(0).Raise("without a hub " + std::to_string(number)));
    // In memory it has more.
    fleet.At(0).EndDaemon();
    fleet.At(0).StartDaemon();
    fleet.Hub().Start();
    const StreamLedger ledger = CompareStreamWithHosts(fleet);
    EXPECT_EQ(ledger.faults, std::vector<std::string>());
    EXPECT_GT(ledger.inGaps, static_cast<std::uint64_t>(kKept));
    EXPECT_GE(ledger.alerts, static_cast<std::uint64_t>(kKept));
}

}  // namespace
}  // namespace oam::torture
