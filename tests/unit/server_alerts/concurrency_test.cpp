// Many threads at once; run these with the thread sanitizer, too.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "alerts.h"
#include "daemon_parts.h"

namespace oam::server {
namespace {

using test::Installation;
using test::Layout;

class Threads {
  public:
    ~Threads() { Join(); }
    template <class Body>
    void Start(Body body) {
        threads_.emplace_back(std::move(body));
    }
    void Join() {
        for (std::thread& thread : threads_) thread.join();
        threads_.clear();
    }

  private:
    std::vector<std::thread> threads_;
};

// Reads until the ring is closed: what it saw and what it missed are all there was.
void readAll(const AlertRing& ring, std::size_t limit, std::uint64_t total) {
    std::uint64_t last = 0;
    std::uint64_t seen = 0;
    std::uint64_t missed = 0;
    while (ring.WaitBehind(last)) {
        const auto batch = ring.Read(last, limit);
        ASSERT_GT(batch.last, last);
        const std::uint64_t gap = batch.last - last - batch.alerts.size();
        ASSERT_EQ(gap > 0, batch.isGap);
        std::uint64_t number = last + gap;
        for (const auto& alert : batch.alerts) ASSERT_EQ(alert->sequence, ++number);
        seen += batch.alerts.size();
        missed += gap;
        last = batch.last;
    }
    EXPECT_EQ(last, total);
    EXPECT_EQ(seen + missed, total);
}

TEST(Concurrency, EveryReaderSeesEveryNumberOnceOrAsAGap) {
    constexpr int kPublishers = 4;
    constexpr std::uint64_t kEach = 5000;
    AlertRing ring(0, 500);
    Threads readers;
    Threads publishers;
    for (const std::size_t limit : {1u, 7u, 256u})
        readers.Start([&ring, limit] { readAll(ring, limit, kPublishers * kEach); });
    std::atomic<std::uint64_t> sum{0};
    for (int i = 0; i < kPublishers; ++i)
        publishers.Start([&] {
            std::uint64_t before = 0;
            for (std::uint64_t n = 0; n < kEach; ++n) {
                const std::uint64_t number =
                    n % 50 == 0 ? ring.PublishMissing() : ring.Publish(AlertOf("some"));
                ASSERT_GT(number, before);
                before = number;
                sum += number;
            }
        });
    publishers.Join();
    ring.Close();
    readers.Join();
    constexpr std::uint64_t kAll = kPublishers * kEach;
    EXPECT_EQ(sum, kAll * (kAll + 1) / 2) << "each number was given once";
}

TEST(Concurrency, AReaderThatDoesNotReadDelaysNobody) {
    AlertRing ring(0, 10);
    ring.Publish(AlertOf("first"));
    const auto held = ring.Read(0, 1);
    Threads quick;
    quick.Start([&] { readAll(ring, 256, 20001); });
    for (int i = 0; i < 20000; ++i) ring.Publish(AlertOf("more"));
    ring.Close();
    quick.Join();
    EXPECT_EQ(held.alerts.at(0)->text, "first");
    EXPECT_TRUE(ring.Read(held.last, 10).isGap);
}

TEST(Concurrency, EveryWaitIsCalledOnceWhoeverEndsIt) {
    constexpr int kRounds = 400;
    OperationBook book(1, 50);
    for (int round = 0; round < kRounds; ++round) {
        const std::string id = book.Begin(OperationKind::kStart, "Board 1", "root").id;
        std::atomic<int> calls{0};
        std::atomic<int> waits{0};
        Threads threads;
        for (int i = 0; i < 2; ++i)
            threads.Start([&] {
                const auto wait = book.Wait(id, [&](const OperationRecord& record) {
                    ++calls;
                    EXPECT_EQ(record.id, id);
                });
                ++waits;
                if (wait && *wait != 0) book.Cancel(*wait);
            });
        threads.Start([&] {
            book.Wait(id, [&](const OperationRecord& record) {
                ++calls;
                EXPECT_EQ(record.state, OperationState::kDone);
                EXPECT_EQ(record.sequence, 9u);
            });
            ++waits;
        });
        threads.Start([&] {
            book.Number(book.OnAlert(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", "good")), 9);
        });
        threads.Start([&] {
            (void)book.Find(id);
            (void)book.List(false, "Board 1");
            book.PutBack(book.TakeChanged());
        });
        threads.Join();
        ASSERT_EQ(waits, 3);
        ASSERT_EQ(calls, 3);
    }
}

TEST(Concurrency, OperationsAndRenamesOfManyBoardsFindTheirOutcomes) {
    OperationBook book(1, 10000);
    constexpr int kBoards = 4;
    constexpr int kTimes = 300;
    Threads threads;
    for (int board = 0; board < kBoards; ++board)
        threads.Start([&book, board] {
            std::string name = "Board " + std::to_string(board);
            for (int i = 0; i < kTimes; ++i) {
                const std::string id = book.Begin(OperationKind::kTest, name, "root").id;
                const std::string next =
                    "Board " + std::to_string(board) + " no " + std::to_string(i);
                book.OnAlert(AlertOf(name, OAMEVN_RENAMED, next));
                const std::string source = i % 2 == 0 ? name : next;
                const StoredAlert outcome = OutcomeOf(OAMEVN_TESTBOARD_DONE, source, "good");
                ASSERT_EQ(book.OnAlert(outcome), id);
                book.Number(id, 1);
                name = next;
            }
        });
    threads.Join();
    EXPECT_EQ(book.List(true, "").size(), 0u);
    EXPECT_EQ(book.List(false, "").size(), std::size_t{kBoards * kTimes});
}

TEST(Concurrency, TheWholeDaemonUnderLoadLosesNothing) {
    Installation place{Layout::kBare};
    PartSizes sizes;
    sizes.block = 128;
    sizes.ring = 100000;
    sizes.operations = 100000;
    constexpr int kThreads = 3;
    constexpr int kTimes = 1000;
    std::uint64_t newest;
    {
        DaemonParts daemon(place.Root(), sizes);
        Threads readers;
        Threads threads;
        for (int i = 0; i < 2; ++i)
            readers.Start([&] { readAll(daemon.ring, 100, kThreads * kTimes * 2); });
        for (int i = 0; i < kThreads; ++i)
            threads.Start([&daemon, i] {
                for (int n = 0; n < kTimes; ++n) {
                    daemon.Publish("between");
                    daemon.RunOperation("Board " + std::to_string(i));
                }
            });
        threads.Join();
        newest = daemon.ring.Given();
        // A closed ring ends the readers' waits; let them see everything first.
        EXPECT_TRUE(daemon.AwaitWritten(newest));
        daemon.ring.Close();
        readers.Join();
        EXPECT_TRUE(daemon.complaints.All().empty())
            << testing::PrintToString(daemon.complaints.All());
    }
    EXPECT_EQ(newest, std::uint64_t{kThreads * kTimes * 2});
    EXPECT_EQ(ReadBook(place.Path("oamd.db")).size(), newest);
    Database database(place.Path("oamd.db"));
    EXPECT_EQ(OperationStore::Load(database).size(), std::size_t{kThreads * kTimes});
}

}  // namespace
}  // namespace oam::server
