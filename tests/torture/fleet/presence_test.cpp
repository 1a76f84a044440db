// A host that is killed or frozen, whole or in part, shows as such within five seconds.
#include <gtest/gtest.h>
#include <signal.h>

#include <functional>
#include <map>
#include <nlohmann/json.hpp>

#include "await.h"
#include "fleet.h"
#include "points.h"

namespace oam::torture {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr milliseconds kShownWithin = seconds(5);

class FleetPresence : public ::testing::Test {
  protected:
    std::map<std::string, std::string> Look() {
        std::map<std::string, std::string> presence;
        const auto told = nlohmann::json::parse(fleet->Tool({"hosts", "--json"}));
        for (const auto& host : told.at("hosts")) presence[host.at("host")] = host.at("presence");
        return presence;
    }

    bool AwaitAll(const std::string& presence) {
        return test::Await([&] {
            const auto seen = Look();
            return seen.size() == fleet->Size() &&
                   std::all_of(seen.begin(), seen.end(),
                               [&](const auto& host) { return host.second == presence; });
        });
    }

    // How long after now each of these hosts (by index) shows as not alive; the look that shows it
    // counts from its begin. Negative: it does not.
    std::map<std::size_t, milliseconds> AwaitNotAlive(std::size_t first, std::size_t count) {
        std::map<std::size_t, milliseconds> after;
        const auto begin = Clock::now();
        (void)test::Await(
            [&] {
                const auto asked = Clock::now();
                const auto seen = Look();
                for (std::size_t i = first; i < first + count; ++i)
                    if (seen.at(fleet->At(i).Name()) != "alive")
                        after.emplace(i, std::chrono::duration_cast<milliseconds>(asked - begin));
                return after.size() == count;
            },
            4 * kShownWithin);
        return after;
    }

    std::unique_ptr<Fleet> fleet;
};

struct Blow {
    const char* what;
    std::function<void(test::Host&)> strike;
    std::function<void(test::Host&)> mend;
};

const std::vector<Blow>& blows() {
    static const std::vector<Blow> all{
        {"the daemon is frozen", [](test::Host& host) { host.Daemon().Signal(SIGSTOP); },
         [](test::Host& host) { host.Daemon().Signal(SIGCONT); }},
        {"the agent is frozen", [](test::Host& host) { host.Agent().Signal(SIGSTOP); },
         [](test::Host& host) { host.Agent().Signal(SIGCONT); }},
        {"both are frozen",
         [](test::Host& host) {
             host.Daemon().Signal(SIGSTOP);
             host.Agent().Signal(SIGSTOP);
         },
         [](test::Host& host) {
             host.Daemon().Signal(SIGCONT);
             host.Agent().Signal(SIGCONT);
         }},
        {"the daemon is killed", [](test::Host& host) { host.KillDaemon(); },
         [](test::Host& host) { host.StartDaemon(); }},
        {"the agent is killed", [](test::Host& host) { host.KillAgent(); },
         [](test::Host& host) { host.StartAgent(); }},
        {"both are killed",
         [](test::Host& host) {
             host.KillDaemon();
             host.KillAgent();
         },
         [](test::Host& host) {
             host.StartDaemon();
             host.StartAgent();
         }},
    };
    return all;
}

TEST_F(FleetPresence, ShowsAHostThatIsKilledOrFrozenWithinFiveSeconds) {
    const std::size_t rounds = IsFull() ? 5 : 1;
    fleet = std::make_unique<Fleet>(static_cast<int>(blows().size()) + 2);
    fleet->Start();
    milliseconds slowest{0};
    for (std::size_t round = 0; round < rounds; ++round) {
        ASSERT_TRUE(AwaitAll("alive"));
        for (std::size_t i = 0; i < blows().size(); ++i) blows()[i].strike(fleet->At(i));
        const auto after = AwaitNotAlive(0, blows().size());
        for (std::size_t i = 0; i < blows().size(); ++i) {
            ASSERT_TRUE(after.count(i)) << blows()[i].what << ", and is never shown";
            EXPECT_LT(after.at(i), kShownWithin) << blows()[i].what;
            slowest = std::max(slowest, after.at(i));
        }
        // Nobody else is taken for one.
        const auto seen = Look();
        for (std::size_t i = blows().size(); i < fleet->Size(); ++i)
            EXPECT_EQ(seen.at(fleet->At(i).Name()), "alive");
        for (std::size_t i = 0; i < blows().size(); ++i) blows()[i].mend(fleet->At(i));
    }
    EXPECT_TRUE(AwaitAll("alive")) << "a host that is back is not shown";
    TellFigures("fleet presence", std::to_string(rounds * blows().size()) +
                                      " hosts killed or frozen, the last shown after " +
                                      Grouped(static_cast<unsigned long>(slowest.count())) + " ms");
}

TEST_F(FleetPresence, TellsAHostThatLeavesInGoodOrderFromOneThatIsSilent) {
    fleet = std::make_unique<Fleet>(2);
    fleet->Start();
    ASSERT_TRUE(AwaitAll("alive"));
    fleet->At(0).Agent().Signal(SIGTERM);
    EXPECT_EQ(fleet->At(0).Agent().Finish().status, 0);
    fleet->At(1).KillAgent();
    EXPECT_TRUE(test::Await([&] {
        const auto seen = Look();
        return seen.at("h001") == "gone" && seen.at("h002") == "stale";
    }));
}

}  // namespace
}  // namespace oam::torture
