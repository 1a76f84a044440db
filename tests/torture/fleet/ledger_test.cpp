// The ledger by which the other tests judge the stream sees what must not be there.
#include <gtest/gtest.h>

#include "fleet.h"
#include "stream_ledger.h"

namespace oam::torture {
namespace {

TEST(StreamLedger, SeesARecordThatIsThereTwiceAndOneThatWasChanged) {
    Fleet fleet(1);
    fleet.Start();
    EXPECT_TRUE(fleet.At(0).Raise("the line is down"));
    EXPECT_EQ(CompareStreamWithHosts(fleet).faults, std::vector<std::string>());
    // No agent that would tell of it, or go on behind it.
    fleet.At(0).KillAgent();
    const test::Observer keeper = fleet.Keeper();
    std::string record = keeper.Last("OAM_ALERTS", "oam.alerts.h001");
    ASSERT_NE(record.find("the line is down"), std::string::npos) << record;
    record.replace(record.find("the line"), 8, "no  line");
    EXPECT_TRUE(keeper.Publish("oam.alerts.h001", record));
    const auto faults = CompareStreamWithHosts(fleet).faults;
    ASSERT_EQ(faults.size(), 2u);
    EXPECT_NE(faults[0].find("twice"), std::string::npos) << faults[0];
    EXPECT_NE(faults[1].find("another than the host's"), std::string::npos) << faults[1];
}

}  // namespace
}  // namespace oam::torture
