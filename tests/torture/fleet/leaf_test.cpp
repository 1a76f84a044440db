// A host behind a server of its own, beside one that has none: nobody in the fleet sees a
// difference.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "await.h"
#include "fleet.h"
#include "leaf.h"
#include "stream_ledger.h"

namespace oam::torture {
namespace {

TEST(FleetLeaf, IsAWayToTheHubLikeAnyOther) {
    Fleet fleet(2);
    test::Leaf leaf(fleet.Site(), "h001", "h001.example.net", fleet.Hub().LeafUrls());
    leaf.Server().Start();
    fleet.At(0).SetHub(leaf.Url());
    fleet.Start();

    const auto boards = nlohmann::json::parse(fleet.Tool({"boards", "--json"})).at("boards");
    ASSERT_EQ(boards.size(), 4u);
    EXPECT_EQ(boards[0].at("host"), "h001");
    EXPECT_TRUE(test::Await([&] {
        const auto hosts = nlohmann::json::parse(fleet.Tool({"hosts", "--json"})).at("hosts");
        return hosts.size() == 2 && hosts[0].at("presence") == "alive";
    })) << fleet.At(0).AgentLog();

    const auto done = nlohmann::json::parse(
        fleet.Tool({"board", "start", "--host", "*", "--json", "Sim 1"}, kOperator));
    EXPECT_EQ(done.at("done").size(), 2u) << done;

    // The hub is away for the leaf as for everybody.
    fleet.Hub().Kill();
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(fleet.At(0).Raise(std::to_string(i)));
    fleet.Hub().Start();
    const StreamLedger ledger = CompareStreamWithHosts(fleet);
    EXPECT_EQ(ledger.faults, std::vector<std::string>()) << fleet.At(0).AgentLog();
}

}  // namespace
}  // namespace oam::torture
