// A host's alerts in the stream: each once, in order, whatever goes away meanwhile.
#include <signal.h>

#include "fleet/link/stream.h"
#include "fleet/names.h"
#include "fleet_test.h"

namespace oam::test {
namespace {

class FleetAlerts : public FleetTest {};

TEST_F(FleetAlerts, ComeIntoTheStreamEachOnce) {
    StartAll();
    Raise("one", 50);
    ASSERT_TRUE(AwaitInStream(Newest()));
    ExpectGapless(Records(), Newest());
    EXPECT_EQ(Records().back().alert["text"], "one");
}

TEST_F(FleetAlerts, AreNeitherLostNorDoubledWhenTheAgentIsKilled) {
    StartAll();
    for (int i = 0; i < 5; ++i) {
        std::thread raising([&] { Raise("storm", 60); });
        ASSERT_TRUE(AwaitInStream(static_cast<std::uint64_t>(20 + 60 * i)));
        KillAgent();
        StartAgent();
        raising.join();
    }
    ASSERT_TRUE(AwaitInStream(Newest()));
    ExpectGapless(Records(), Newest());
}

TEST_F(FleetAlerts, AreCaughtUpAfterAnOutageOfTheEngine) {
    StartAll();
    Raise("before", 10);
    ASSERT_TRUE(AwaitInStream(Newest()));
    engine.Stop();
    Raise("meanwhile", 40);
    engine.Start();
    ASSERT_TRUE(AwaitInStream(Newest()));
    ExpectGapless(Records(), Newest());
}

// The stream forgets ids after a while; then the last record of the host is all there is to go by.
TEST_F(FleetAlerts, AreNotDoubledAfterTheStreamHasForgottenTheirIds) {
    StartAll();
    Raise("before", 10);
    ASSERT_TRUE(AwaitInStream(Newest()));
    KillAgent();
    {
        const auto link = LinkOf("keeper");
        jsStreamInfo* info = nullptr;
        ASSERT_EQ(js_GetStreamInfo(&info, link->Streams(), fleet::kAlertStream, nullptr, nullptr),
                  NATS_OK);
        const fleet::StreamInfoHandle owned(info);
        info->Config->Duplicates = 100'000'000;
        ASSERT_EQ(js_UpdateStream(nullptr, link->Streams(), info->Config, nullptr, nullptr),
                  NATS_OK);
    }
    Raise("meanwhile", 10);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    StartAgent();
    ASSERT_TRUE(AwaitInStream(Newest()));
    ExpectGapless(Records(), Newest());
}

TEST_F(FleetAlerts, OfTwoAgentsForOneHostAreNotDoubled) {
    StartAll();
    auto first = std::move(agent);
    StartAgent();
    Raise("both", 200);
    ASSERT_TRUE(AwaitInStream(Newest()));
    first->Signal(SIGTERM);
    EXPECT_EQ(first->Finish().status, 0);
    Raise("one", 10);
    ASSERT_TRUE(AwaitInStream(Newest()));
    ExpectGapless(Records(), Newest());
}

// A publisher that never hears that its record is there tries it again.
TEST_F(FleetAlerts, ARecordThatIsOutOfStepIsRefusedByTheStream) {
    StartAll();
    Raise("one", 3);
    ASSERT_TRUE(AwaitInStream(Newest()));
    const auto link = LinkOf("keeper");
    const std::string subject = fleet::AlertSubject("other");
    const auto first =
        fleet::PublishBehind(*link, fleet::kAlertStream, {subject, "other+1", 0}, "1");
    EXPECT_THROW(
        (void)fleet::PublishBehind(*link, fleet::kAlertStream, {subject, "other+2", 0}, "2"),
        fleet::OutOfStep);
    const auto again =
        fleet::PublishBehind(*link, fleet::kAlertStream, {subject, "other+1", 0}, "1");
    EXPECT_TRUE(again.wasThere);
    EXPECT_EQ(again.sequence, first.sequence);
    const auto second =
        fleet::PublishBehind(*link, fleet::kAlertStream, {subject, "other+2", first.sequence}, "2");
    EXPECT_GT(second.sequence, first.sequence);
}

TEST_F(FleetAlerts, OfAHostThatCountsAnewAreANewSeries) {
    StartAll();
    Raise("old", 30);
    ASSERT_TRUE(AwaitInStream(Newest()));
    const std::uint64_t before = Newest();
    End();
    for (const char* const file : {"oam/oamd.db", "oam/oamd.numbers"}) home.Remove(file);
    StartAgain();
    Raise("new", 3);
    ASSERT_LT(Newest(), before);
    ASSERT_TRUE(Await([&] {
        return Records().back().alert.value("text", Json()) == "new" &&
               Records().back().sequence == Newest();
    }));
    const auto records = Records();
    const auto restart = std::find_if(records.begin(), records.end(), [](const auto& record) {
        return record.kind == fleet::AlertRecord::Kind::kRestart;
    });
    ASSERT_NE(restart, records.end());
    EXPECT_EQ(restart->series, 1U);
    EXPECT_EQ(restart->alert["restart"]["last"], before);
    ExpectGapless({records.begin(), restart}, before);
    ExpectGapless({restart + 1, records.end()}, Newest());
}

// The ring of the smallest size; what it has dropped is told, and nothing else is missing.
TEST_F(FleetAlerts, ThatTheRingHasDroppedAreTold) {
    options = {"--alerts-kept", "1000"};
    StartAll();
    ASSERT_TRUE(AwaitInStream(1));
    KillAgent();
    Raise("many", 1500);
    End();
    StartAgain();
    StartAgent();
    ASSERT_TRUE(AwaitInStream(Newest()));
    const auto records = Records();
    EXPECT_EQ(std::count_if(
                  records.begin(), records.end(),
                  [](const auto& record) { return record.kind == fleet::AlertRecord::Kind::kGap; }),
              1);
    ExpectGapless(records, Newest());
}

TEST_F(FleetAlerts, ThatHaveGrownTooOldInTheStreamAreNotToldAgain) {
    agentOptions = {"--inventory", "1"};
    StartAll();
    Raise("old", 10);
    ASSERT_TRUE(AwaitInStream(Newest()));
    const std::uint64_t before = Newest();
    const auto link = LinkOf("keeper");
    ASSERT_TRUE(Await([&] {
        const auto host = FleetJson("viewer", {"hosts"});
        const auto stored =
            fleet::LastWith(*link, fleet::BucketStream(fleet::kHostBucket),
                            fleet::BucketSubject(fleet::kHostBucket, fleet::TokenOf(kHostName)));
        return stored && fleet::ReadHost(stored->data).position.sequence == before;
    }));
    KillAgent();
    ASSERT_EQ(js_PurgeStream(link->Streams(), fleet::kAlertStream, nullptr, nullptr), NATS_OK);
    Raise("new", 2);
    StartAgent();
    ASSERT_TRUE(AwaitInStream(Newest()));
    EXPECT_EQ(Records().front().sequence, before + 1);
}

}  // namespace
}  // namespace oam::test
