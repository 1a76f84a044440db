// What a host costs the hub, itself and whoever looks, in fleets of growing size: a table, and the
// bounds that it must keep. scripts/fleet-load runs it in full; docs/scale.md has the last table.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <nlohmann/json.hpp>

#include "fleet.h"
#include "points.h"
#include "process_cost.h"
#include "stream_ledger.h"

namespace oam::torture {
namespace {

using Clock = std::chrono::steady_clock;

// Of one size of fleet. Per host unless said.
struct Row {
    std::size_t hosts = 0;
    double hubCpu = 0;       // milliseconds of all three servers together for one beat
    double hubKb = 0;        // memory of all three
    double recordBytes = 0;  // in the three buckets
    double agentCpu = 0;     // milliseconds a second
    double daemonCpu = 0;
    double agentKb = 0;
    double alertCpu = 0;    // milliseconds of the hub for one alert
    double alertBytes = 0;  // in the stream, one copy
    double alertRate = 0;   // alerts a second of the whole fleet
    double boards = 0;      // seconds of `oam fleet boards`
    double hostList = 0;    // ... `hosts`
};

double secondsOf(const std::function<void()>& work) {
    const auto begin = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

class FleetCost : public ::testing::Test {
  protected:
    static constexpr int kBoards = 8;

    double HubCpu() {
        double seconds = 0;
        for (int i = 0; i < test::Hub::kServers; ++i)
            seconds += CostOf(fleet->Hub().At(i).Pid()).cpuSeconds;
        return seconds;
    }
    double HubKb() {
        double kilobytes = 0;
        for (int i = 0; i < test::Hub::kServers; ++i)
            kilobytes += CostOf(fleet->Hub().At(i).Pid()).ownKb;
        return kilobytes;
    }
    template <class Process>
    ProcessCost AllOf(Process process) {
        ProcessCost all;
        for (std::size_t i = 0; i < fleet->Size(); ++i) {
            const ProcessCost one = CostOf((fleet->At(i).*process)().Pid());
            all.cpuSeconds += one.cpuSeconds;
            all.ownKb += one.ownKb;
        }
        return all;
    }
    // So far, of all hosts. An agent that waits for a processor beats later.
    std::uint64_t Beats() { return fleet->Keeper().Facts("KV_oam_presence").value().last; }
    double RecordBytes() {
        const test::Observer keeper = fleet->Keeper();
        double bytes = 0;
        for (const char* bucket : {"KV_oam_hosts", "KV_oam_boards", "KV_oam_presence"})
            bytes += static_cast<double>(keeper.Facts(bucket).value().bytes);
        return bytes;
    }
    // The best of five: what it takes, not what others on this machine take from it.
    double Ask(const std::vector<std::string>& arguments) {
        std::vector<double> times;
        for (int i = 0; i < 5; ++i)
            times.push_back(secondsOf([&] { (void)fleet->Tool(arguments); }));
        std::sort(times.begin(), times.end());
        return times.front();
    }

    // Nothing happens but heartbeats.
    void MeasureRest(Row* row) {
        const double hub = HubCpu();
        const std::uint64_t beats = Beats();
        const double agents = AllOf(&test::Host::Agent).cpuSeconds;
        const double daemons = AllOf(&test::Host::Daemon).cpuSeconds;
        const double time =
            secondsOf([] { std::this_thread::sleep_for(std::chrono::seconds(IsFull() ? 30 : 4)); });
        const double perHost = 1000 / time / static_cast<double>(row->hosts);
        row->hubCpu = (HubCpu() - hub) * 1000 / static_cast<double>(Beats() - beats);
        row->agentCpu = (AllOf(&test::Host::Agent).cpuSeconds - agents) * perHost;
        row->daemonCpu = (AllOf(&test::Host::Daemon).cpuSeconds - daemons) * perHost;
        row->hubKb = HubKb() / static_cast<double>(row->hosts);
        row->agentKb = AllOf(&test::Host::Agent).ownKb / static_cast<double>(row->hosts);
        row->recordBytes = RecordBytes() / static_cast<double>(row->hosts);
    }

    void MeasureAlerts(Row* row) {
        const auto facts = [&] { return fleet->Keeper().Facts("OAM_ALERTS").value(); };
        const int alerts = IsFull() ? 20 : 5;
        const test::StreamFacts before = facts();
        const double hub = HubCpu();
        const double time = secondsOf([&] {
            for (int i = 0; i < alerts; ++i)
                for (std::size_t host = 0; host < fleet->Size(); ++host)
                    EXPECT_TRUE(fleet->At(host).Raise("the line is down " + std::to_string(i)));
            EXPECT_TRUE(AwaitCaughtUp(*fleet));
        });
        const test::StreamFacts after = facts();
        const auto count = static_cast<double>(after.messages - before.messages);
        row->alertCpu = (HubCpu() - hub) * 1000 / count;
        row->alertBytes = static_cast<double>(after.bytes - before.bytes) / count;
        row->alertRate = count / time;
    }

    Row Measure() {
        Row row;
        row.hosts = fleet->Size();
        MeasureRest(&row);
        MeasureAlerts(&row);
        const auto told = nlohmann::json::parse(fleet->Tool({"boards", "--json"}));
        EXPECT_EQ(told.at("boards").size(), row.hosts * kBoards);
        row.boards = Ask({"boards"});
        row.hostList = Ask({"hosts"});
        return row;
    }

    static void Tell(const std::vector<Row>& rows) {
        std::printf(
            "| hosts | hub CPU, ms a beat | hub memory, KB | records, bytes | agent CPU, ms/s "
            "| oamd CPU, ms/s | agent memory, KB | alert: hub CPU, ms | alert, bytes "
            "| alerts/s | `boards`, ms | `hosts`, ms |\n"
            "|---|---|---|---|---|---|---|---|---|---|---|---|\n");
        for (const Row& row : rows)
            std::printf(
                "| %zu | %.2f | %.0f | %.0f | %.2f | %.2f | %.0f | %.2f | %.0f | %.0f "
                "| %.0f | %.0f |\n",
                row.hosts, row.hubCpu, row.hubKb, row.recordBytes, row.agentCpu, row.daemonCpu,
                row.agentKb, row.alertCpu, row.alertBytes, row.alertRate, row.boards * 1000,
                row.hostList * 1000);
        std::fflush(stdout);
    }

    std::unique_ptr<Fleet> fleet;
};

TEST_F(FleetCost, OfAHostIsFlatAndALookAtAllBoardsTakesUnderASecond) {
    const std::vector<int> sizes = IsFull() ? std::vector{50, 100, 150, 200} : std::vector{5, 20};
    std::vector<Row> rows;
    fleet = std::make_unique<Fleet>(sizes.front(), kBoards);
    fleet->Start();
    for (const int size : sizes) {
        fleet->Grow(size - static_cast<int>(fleet->Size()));
        rows.push_back(Measure());
        EXPECT_LT(rows.back().boards, 1.0) << size << " hosts";
    }
    Tell(rows);
    // What the servers take for themselves is shared by more hosts, so flat is a bound from above.
    const Row &first = rows.front(), &last = rows.back();
    constexpr double kFlat = 1.5;
    EXPECT_LT(last.hubKb, kFlat * first.hubKb);
    EXPECT_LT(last.agentKb, kFlat * first.agentKb);
    EXPECT_LT(last.recordBytes, kFlat * first.recordBytes);
    EXPECT_LT(last.alertBytes, kFlat * first.alertBytes);
    // Of a few hosts for a few seconds the processor's time is a few of the kernel's ticks.
    if (!IsFull()) return;
    EXPECT_LT(last.hubCpu, kFlat * first.hubCpu);
    EXPECT_LT(last.agentCpu, kFlat * first.agentCpu);
    EXPECT_LT(last.alertCpu, kFlat * first.alertCpu);
}

}  // namespace
}  // namespace oam::torture
