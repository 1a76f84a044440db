#include "alerts/alert_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "alerts.h"
#include "daemon_parts.h"
#include "sync_door.h"
#include "unit/sim/waiting.h"

namespace oam::server {
namespace {

using test::Installation;
using test::Layout;
using testing::IsEmpty;

std::vector<std::uint64_t> numbersOf(const std::vector<StoredAlert>& alerts) {
    std::vector<std::uint64_t> numbers;
    for (const StoredAlert& alert : alerts) numbers.push_back(alert.sequence);
    return numbers;
}

class Writer : public testing::Test {
  protected:
    Installation place_{Layout::kBare};
    const std::string path_ = place_.Path("oamd.db");
};

TEST_F(Writer, BringsEveryAlertIntoTheBook) {
    DaemonParts daemon(place_.Root());
    daemon.Publish("one");
    ASSERT_TRUE(daemon.AwaitWritten(1));
    for (int i = 2; i <= 5000; ++i) daemon.Publish("more");
    ASSERT_TRUE(daemon.AwaitWritten(5000));
    EXPECT_EQ(numbersOf(ReadBook(path_)), Range(1, 5000));
    EXPECT_THAT(daemon.complaints.All(), IsEmpty());
}

TEST_F(Writer, WritesWhatIsLeftAtTheEnd) {
    {
        DaemonParts daemon(place_.Root());
        for (int i = 1; i <= 9000; ++i) daemon.Publish("all of them");
    }
    EXPECT_EQ(numbersOf(ReadBook(path_)), Range(1, 9000));
}

TEST_F(Writer, LeavesTheExactLastNumberAtTheEnd) {
    for (std::uint64_t start = 1; start <= 5; ++start) {
        DaemonParts daemon(place_.Root());
        EXPECT_EQ(daemon.numbers.LastAlert(), (start - 1) * 10);
        for (int i = 0; i < 10; ++i) daemon.Publish("ten a start");
    }
    EXPECT_EQ(numbersOf(ReadBook(path_)), Range(1, 50));
}

TEST_F(Writer, KeepsTheBoundOfTheBook) {
    PartSizes sizes;
    sizes.alerts = 100;
    {
        DaemonParts daemon(place_.Root(), sizes);
        for (int i = 1; i <= 1000; ++i) daemon.Publish("most are forgotten");
    }
    EXPECT_EQ(numbersOf(ReadBook(path_)), Range(901, 1000));
}

TEST_F(Writer, WhatWasInTheBookBeforeIsNotWrittenAgain) {
    { DaemonParts(place_.Root()).Publish("one"); }
    {
        Database database(path_);
        database.Run("UPDATE alerts SET text = CAST('mark' AS BLOB)");
    }
    { DaemonParts(place_.Root()).Publish("two"); }
    const auto kept = ReadBook(path_);
    ASSERT_EQ(numbersOf(kept), Range(1, 2));
    EXPECT_EQ(kept[0].text, "mark");
}

TEST_F(Writer, ShowsAlertsBeyondTheFirstBlock) {
    PartSizes sizes;
    sizes.block = 10;
    DaemonParts daemon(place_.Root(), sizes);
    for (std::uint64_t n = 1; n <= 500; ++n) {
        daemon.Publish("one of many");
        if (n % 25 == 0) {
            ASSERT_TRUE(daemon.ring.WaitBehind(n - 1));
        }
    }
    EXPECT_EQ(daemon.ring.Newest(), 500u);
    EXPECT_EQ(daemon.ring.Read(0, 1).alerts.at(0)->sequence, 1u);
}

// While a reservation is on its way to the disk, nobody sees an alert that needs it.
TEST_F(Writer, ShowsNoAlertBeforeItsNumberIsOnTheDisk) {
    PartSizes sizes;
    sizes.block = 10;
    std::atomic<DaemonParts*> under{nullptr};
    std::atomic<int> syncs{0};
    std::atomic<int> early{0};
    const SyncDoor door([&] {
        const DaemonParts* const daemon = under;
        if (daemon == nullptr) return 0;  // the first block, before there is a ring
        ++syncs;
        early += daemon->ring.Newest() > daemon->numbers.Reserved();
        return 0;
    });
    DaemonParts daemon(place_.Root(), sizes);
    under = &daemon;
    ASSERT_TRUE(sim::becomesTrue([&] {
        daemon.Publish("more");
        return syncs > 100;
    }));
    EXPECT_EQ(early, 0);
}

TEST_F(Writer, AMissingAlertIsMissingInTheBookAndSaidOnce) {
    {
        DaemonParts daemon(place_.Root());
        daemon.Publish("one");
        daemon.ring.PublishMissing();
        daemon.ring.PublishMissing();
        daemon.Publish("four");
        ASSERT_TRUE(daemon.AwaitWritten(4));
        EXPECT_TRUE(daemon.complaints.Await("missing in the book"));
    }
    EXPECT_EQ(numbersOf(ReadBook(path_)), (std::vector<std::uint64_t>{1, 4}));
}

// A lock on the book holds the writer up; memory holds less than comes meanwhile.
TEST_F(Writer, WhatMemoryCouldNotHoldIsMissingInTheBookAndSaid) {
    PartSizes sizes;
    sizes.ring = 10;
    DaemonParts daemon(place_.Root(), sizes);
    ASSERT_TRUE(sim::becomesTrue([&] { return place_.Exists("oamd.db"); }));
    Database other(path_);
    {
        const Database::Transaction lock(other);
        for (int i = 1; i <= 100; ++i) daemon.Publish("too many");
        ASSERT_TRUE(daemon.complaints.Await("cannot write the book"));
    }
    ASSERT_TRUE(daemon.AwaitWritten(100));
    ASSERT_TRUE(daemon.complaints.Await("90 alerts are missing in the book, up to number 100"))
        << testing::PrintToString(daemon.complaints.All());
    EXPECT_EQ(numbersOf(ReadBook(path_)), Range(91, 100));
}

TEST_F(Writer, AReaderPagesThroughTheBookWhileItIsWritten) {
    DaemonParts daemon(place_.Root());
    constexpr std::uint64_t kAlerts = 8000;
    std::thread publisher([&] {
        for (std::uint64_t i = 0; i < kAlerts; ++i) daemon.Publish("on and on");
    });
    Database database(path_);
    AlertBook book(database);
    std::vector<std::uint64_t> seen;
    const auto readAll = [&] {
        const auto page = book.Read(seen.size(), 300, {});
        EXPECT_FALSE(page.firstBehindGap);
        for (const StoredAlert& alert : page.alerts) seen.push_back(alert.sequence);
        return seen.size() == kAlerts;
    };
    EXPECT_TRUE(sim::becomesTrue(readAll));
    publisher.join();
    EXPECT_EQ(seen, Range(1, kAlerts));
}

TEST_F(Writer, WithoutADirectoryTheDaemonGoesOnInMemoryAndSaysSoOnce) {
    DaemonParts daemon(place_.Path("none"));
    ASSERT_TRUE(daemon.complaints.Await("cannot write the book"));
    EXPECT_EQ(daemon.complaints.Count("cannot reserve numbers"), 1u);
    const std::uint64_t before = daemon.numbers.LastAlert();
    for (int i = 1; i <= 50; ++i) {
        daemon.Publish("live");
        std::this_thread::yield();
    }
    EXPECT_EQ(NumbersOf(daemon.ring.Read(before, 100)), Range(before + 1, before + 50));
    EXPECT_EQ(daemon.RunOperation("Board 1").sequence, before + 51);
    EXPECT_EQ(daemon.complaints.All().size(), 2u)
        << testing::PrintToString(daemon.complaints.All());

    place_.MakeDirectory("none");
    ASSERT_TRUE(daemon.complaints.Await("can be written again"));
    ASSERT_TRUE(daemon.complaints.Await("reserved on the disk again"));
    ASSERT_TRUE(daemon.AwaitWritten(before + 51));
    EXPECT_EQ(ReadBook(place_.Path("none/oamd.db")).size(), 51u);
    EXPECT_EQ(daemon.complaints.All().size(), 4u)
        << testing::PrintToString(daemon.complaints.All());
}

}  // namespace
}  // namespace oam::server
