#include "alerts/alert_ring.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "alerts.h"
#include "store/bell.h"

namespace oam::server {
namespace {

using testing::IsEmpty;

void publish(AlertRing& ring, std::uint64_t count) {
    for (std::uint64_t i = 0; i < count; ++i) ring.Publish(AlertOf("some"));
}

TEST(AlertRing, NumbersGoOnBehindTheOneItIsGiven) {
    AlertRing ring(41, 10);
    EXPECT_EQ(ring.Newest(), 41u);
    EXPECT_EQ(ring.Oldest(), 42u);
    EXPECT_EQ(ring.Publish(AlertOf("one")), 42u);
    EXPECT_EQ(ring.Publish(AlertOf("two")), 43u);
    EXPECT_EQ(ring.Newest(), 43u);
    EXPECT_EQ(ring.Oldest(), 42u);
}

TEST(AlertRing, GivesBackWhatWasPublished) {
    AlertRing ring(0, 10);
    StoredAlert alert = OutcomeOf(OAMEVN_STOPBOARD_DONE, "Board 7", "no", OAM_ERROR);
    alert.operation = "3-4";
    ring.Publish(alert);
    const auto batch = ring.Read(0, 10);
    ASSERT_EQ(batch.alerts.size(), 1u);
    const StoredAlert& read = *batch.alerts[0];
    EXPECT_EQ(read.sequence, 1u);
    EXPECT_EQ(read.time, alert.time);
    EXPECT_EQ(read.code, unsigned{OAMEVN_STOPBOARD_DONE});
    EXPECT_EQ(read.severity, unsigned{OAM_ERROR});
    EXPECT_EQ(read.source, "Board 7");
    EXPECT_EQ(read.text, "no");
    EXPECT_EQ(read.operation, "3-4");
}

TEST(AlertRing, ReadsWhatCameBehindANumber) {
    AlertRing ring(0, 100);
    publish(ring, 5);
    const auto batch = ring.Read(2, 100);
    EXPECT_EQ(NumbersOf(batch), Range(3, 5));
    EXPECT_FALSE(batch.isGap);
    EXPECT_EQ(batch.newest, 5u);
    EXPECT_EQ(batch.last, 5u);
}

TEST(AlertRing, HasNothingBehindTheNewest) {
    AlertRing ring(0, 100);
    publish(ring, 5);
    for (const std::uint64_t after : {5u, 6u, 1000u}) {
        const auto batch = ring.Read(after, 100);
        EXPECT_THAT(batch.alerts, IsEmpty());
        EXPECT_FALSE(batch.isGap);
        EXPECT_EQ(batch.newest, 5u);
        EXPECT_EQ(batch.last, after);
    }
}

TEST(AlertRing, ReadsNoMoreThanTheLimitAndGoesOnFromThere) {
    AlertRing ring(0, 100);
    publish(ring, 5);
    const auto first = ring.Read(0, 2);
    EXPECT_EQ(NumbersOf(first), Range(1, 2));
    EXPECT_EQ(first.newest, 5u);
    EXPECT_EQ(NumbersOf(ring.Read(first.last, 2)), Range(3, 4));
}

TEST(AlertRing, ReadsNoMoreAtOnceThanPublishersCanWaitFor) {
    AlertRing ring(0, 10 * AlertRing::kMostAtOnce);
    publish(ring, 2 * AlertRing::kMostAtOnce);
    EXPECT_EQ(NumbersOf(ring.Read(0, 1000000)), Range(1, AlertRing::kMostAtOnce));
}

TEST(AlertRing, TellsASlowReaderOfAGap) {
    AlertRing ring(0, 3);
    publish(ring, 10);
    EXPECT_EQ(ring.Oldest(), 8u);
    const auto batch = ring.Read(4, 100);
    EXPECT_TRUE(batch.isGap);
    EXPECT_EQ(NumbersOf(batch), Range(8, 10));
    const auto rest = ring.Read(7, 100);
    EXPECT_FALSE(rest.isGap);
    EXPECT_EQ(NumbersOf(rest), Range(8, 10));
}

TEST(AlertRing, WhatWasBeforeItsBeginIsAGap) {
    AlertRing ring(100, 3);
    auto batch = ring.Read(40, 100);
    EXPECT_TRUE(batch.isGap);
    EXPECT_THAT(batch.alerts, IsEmpty());
    EXPECT_EQ(batch.last, 100u);
    EXPECT_FALSE(ring.Read(100, 100).isGap);

    publish(ring, 1);
    batch = ring.Read(40, 100);
    EXPECT_TRUE(batch.isGap);
    EXPECT_EQ(NumbersOf(batch), Range(101, 101));
}

TEST(AlertRing, AMissingAlertIsAGapOfItsOwn) {
    AlertRing ring(0, 10);
    publish(ring, 2);
    EXPECT_EQ(ring.PublishMissing(), 3u);
    publish(ring, 2);

    const auto before = ring.Read(0, 100);
    EXPECT_FALSE(before.isGap);
    EXPECT_EQ(NumbersOf(before), Range(1, 2));
    const auto behind = ring.Read(before.last, 100);
    EXPECT_TRUE(behind.isGap);
    EXPECT_EQ(NumbersOf(behind), Range(4, 5));
}

TEST(AlertRing, AMissingAlertAtTheEndIsAGapUpToTheNewest) {
    AlertRing ring(0, 10);
    publish(ring, 2);
    ring.PublishMissing();
    const auto batch = ring.Read(2, 100);
    EXPECT_TRUE(batch.isGap);
    EXPECT_THAT(batch.alerts, IsEmpty());
    EXPECT_EQ(batch.last, 3u);
    EXPECT_TRUE(ring.WaitBehind(2));
}

TEST(AlertRing, AMissingAlertCountsAsOneThatIsKept) {
    AlertRing ring(0, 3);
    publish(ring, 3);
    ring.PublishMissing();
    EXPECT_EQ(ring.Oldest(), 2u);
    ring.PublishMissing();
    ring.PublishMissing();
    EXPECT_EQ(ring.Oldest(), 7u);  // none is kept
}

TEST(AlertRing, KeepsOneAtLeast) {
    AlertRing ring(0, 0);
    publish(ring, 2);
    EXPECT_EQ(NumbersOf(ring.Read(1, 0)), Range(2, 2));
}

TEST(AlertRing, WaitsEndWithAnAlert) {
    AlertRing ring(0, 10);
    std::thread reader([&] { EXPECT_TRUE(ring.WaitBehind(1)); });
    publish(ring, 2);
    reader.join();
}

TEST(AlertRing, WaitsEndAtTheirTime) {
    AlertRing ring(0, 10);
    publish(ring, 1);
    const auto now = std::chrono::steady_clock::now();
    EXPECT_FALSE(ring.WaitBehind(1, now + std::chrono::milliseconds(5)));
    EXPECT_TRUE(ring.WaitBehind(0, now));
}

TEST(AlertRing, CloseEndsAllWaitsForGood) {
    AlertRing ring(0, 10);
    publish(ring, 1);
    std::thread first([&] { EXPECT_FALSE(ring.WaitBehind(1)); });
    std::thread second([&] { EXPECT_FALSE(ring.WaitBehind(5)); });
    EXPECT_FALSE(ring.IsClosed());
    ring.Close();
    first.join();
    second.join();
    EXPECT_TRUE(ring.IsClosed());
    EXPECT_FALSE(ring.WaitBehind(1));
    EXPECT_TRUE(ring.WaitBehind(0)) << "what there is can still be read";
}

TEST(AlertRing, GivesNoNumberAfterClose) {
    AlertRing ring(0, 10);
    publish(ring, 2);
    ring.Close();
    EXPECT_EQ(ring.Publish(AlertOf("late")), 0u);
    EXPECT_EQ(ring.PublishMissing(), 0u);
    EXPECT_EQ(ring.Given(), 2u);
    EXPECT_EQ(NumbersOf(ring.Read(0, 10)), Range(1, 2));
}

TEST(AlertRing, ShowsNoAlertBeforeItsNumberIsReserved) {
    AlertRing ring(0, 10);
    ring.ShowUpTo(2);
    publish(ring, 4);
    EXPECT_EQ(ring.Given(), 4u);
    EXPECT_EQ(ring.Newest(), 2u);
    EXPECT_EQ(NumbersOf(ring.Read(0, 10)), Range(1, 2));
    EXPECT_THAT(ring.Read(2, 10).alerts, IsEmpty());
    EXPECT_FALSE(ring.Read(2, 10).isGap);
    EXPECT_FALSE(ring.WaitBehind(2, std::chrono::steady_clock::now()));

    std::thread reader([&] { EXPECT_TRUE(ring.WaitBehind(2)); });
    ring.ShowUpTo(3);
    reader.join();
    EXPECT_EQ(NumbersOf(ring.Read(2, 10)), Range(3, 3));
}

TEST(AlertRing, WhatWasOverwrittenBeforeItWasShownIsAGap) {
    AlertRing ring(0, 3);
    ring.ShowUpTo(2);
    publish(ring, 9);
    const auto hidden = ring.Read(0, 10);
    EXPECT_TRUE(hidden.isGap);
    EXPECT_THAT(hidden.alerts, IsEmpty());
    EXPECT_EQ(hidden.last, 2u);
    ring.ShowUpTo(100);
    const auto shown = ring.Read(2, 10);
    EXPECT_TRUE(shown.isGap);
    EXPECT_EQ(NumbersOf(shown), Range(7, 9));
}

TEST(AlertRing, RingsTheBellForEveryAlert) {
    Bell bell;
    AlertRing ring(0, 3, &bell);
    for (int i = 0; i < 3; ++i) {
        publish(ring, 1);
        EXPECT_TRUE(bell.AwaitRing());
    }
    ring.PublishMissing();
    EXPECT_TRUE(bell.AwaitRing());
}

TEST(AlertRing, AnAlertStaysAsLongAsAReaderHasIt) {
    AlertRing ring(0, 1);
    ring.Publish(AlertOf("first"));
    const auto batch = ring.Read(0, 1);
    publish(ring, 5);
    EXPECT_EQ(batch.alerts.at(0)->text, "first");
}

}  // namespace
}  // namespace oam::server
