// Kills at random moments: whatever anybody has seen, no number and no identity comes again.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <atomic>
#include <chrono>
#include <random>
#include <set>
#include <thread>

#include "alerts.h"
#include "daemon_parts.h"
#include "unit/platform/child_process.h"

namespace oam::server {
namespace {

using test::Installation;
using test::Layout;

// What the child's readers saw; it outlives the child.
struct Seen {
    std::atomic<std::uint64_t> alert{0};
    std::atomic<std::uint64_t> operation{0};  // of this start
    std::atomic<std::uint64_t> start{0};
    std::atomic<std::uint64_t> given{0};  // of an orderly end
    std::atomic<bool> isUnderWay{false};
};

class SharedSeen {
  public:
    SharedSeen()
        : place_(mmap(nullptr, sizeof(Seen), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1,
                      0)),
          seen_(new (place_) Seen) {}
    ~SharedSeen() { munmap(place_, sizeof(Seen)); }
    SharedSeen(const SharedSeen&) = delete;
    SharedSeen& operator=(const SharedSeen&) = delete;
    Seen* operator->() const { return seen_; }
    Seen& operator*() const { return *seen_; }

  private:
    void* place_;
    Seen* seen_;
};

// Small, so that reserving is what happens all the time.
PartSizes smallBlocks() {
    PartSizes sizes;
    sizes.ring = 2000;
    sizes.alerts = 3000;
    sizes.block = 64;
    return sizes;
}

void readOn(const AlertRing& ring, Seen& seen) {
    std::uint64_t last = ring.Newest();
    while (ring.WaitBehind(last)) {
        last = ring.Read(last, 256).last;
        seen.alert = last;
        seen.isUnderWay = true;
    }
}

// Publishes and runs operations until `isOver`, or until it is killed.
int floodUntil(const std::string& directory, Seen& seen, const std::atomic<bool>& isOver) {
    DaemonParts daemon(directory, smallBlocks());
    seen.start = daemon.numbers.Start();
    seen.operation = 0;
    std::thread reader([&] { readOn(daemon.ring, seen); });
    std::vector<std::thread> publishers;
    for (int i = 0; i < 2; ++i)
        publishers.emplace_back([&] {
            while (!isOver) daemon.Publish("alert of a flood");
        });
    while (!isOver) {
        const std::string id = daemon.RunOperation("Board 1").id;
        seen.operation = OperationId::Parse(id)->n;
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    for (std::thread& publisher : publishers) publisher.join();
    daemon.ring.Close();
    seen.given = daemon.ring.Given();
    reader.join();
    return 0;
}

// Every alert of the book was shown once, with a number that it alone has.
void expectSoundBook(const std::string& path, std::uint64_t last) {
    std::uint64_t before = 0;
    for (const StoredAlert& alert : ReadBook(path)) {
        ASSERT_GT(alert.sequence, before);
        before = alert.sequence;
    }
    EXPECT_LE(before, last);
    Database database(path);
    Statement check(database, "PRAGMA integrity_check");
    ASSERT_TRUE(check.Step());
    EXPECT_EQ(check.Bytes(0), "ok");
}

TEST(Kills, NoNumberThatAReaderSawComesAgain) {
    Installation place{Layout::kBare};
    const std::string numbersPath = place.Path("oamd.numbers");
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    SharedSeen seen;
    std::set<std::string> identities;
    std::uint64_t highest = 0;
    for (int turn = 0; turn < 60; ++turn) {
        SCOPED_TRACE("turn " + std::to_string(turn));
        seen->isUnderWay = false;
        const bool isOrderly = random() % 4 == 0;
        const auto life = std::chrono::microseconds(random() % 40000);
        Baton started;
        ChildProcess child([&] {
            std::atomic<bool> isOver{false};
            std::thread timer;
            if (isOrderly)
                timer = std::thread([&] {
                    std::this_thread::sleep_for(life);
                    isOver = true;
                });
            started.Pass();
            const int result = floodUntil(place.Root(), *seen, isOver);
            if (timer.joinable()) timer.join();
            return result;
        });
        ASSERT_TRUE(started.Await());
        if (isOrderly) {
            ASSERT_EQ(child.Await(), 0);
        } else {
            std::this_thread::sleep_for(life);
            child.Kill();
        }

        const std::uint64_t shown = seen->alert;
        // A kill may come before the child has shown anything.
        EXPECT_GE(shown, highest);
        highest = shown;
        if (!std::filesystem::exists(numbersPath)) continue;
        {
            DaemonParts daemon(place.Root(), smallBlocks());
            EXPECT_EQ(daemon.numbers.Trouble(), "");
            const std::uint64_t next = daemon.Publish("the next");
            ASSERT_GT(next, highest) << (isOrderly ? "after an orderly end" : "after a kill");
            if (isOrderly) {
                EXPECT_EQ(next, seen->given + 1);
            }
            EXPECT_GT(daemon.numbers.Start(), seen->start.load());
            const std::string id = daemon.RunOperation("Board 1").id;
            EXPECT_TRUE(identities.insert(id).second) << id;
            // What the killed one was told is known or unknown, and never nonsense.
            if (const std::uint64_t n = seen->operation) {
                const auto old = daemon.operations.Find(OperationId{seen->start, n}.Text());
                ASSERT_TRUE(old.has_value());
                EXPECT_NE(old->state, OperationState::kRunning);
            }
            EXPECT_EQ(daemon.complaints.Count("cannot"), 0u)
                << testing::PrintToString(daemon.complaints.All());
            highest = daemon.ring.Given();
            seen->alert = highest;
        }
        expectSoundBook(place.Path("oamd.db"), highest);
    }
}

}  // namespace
}  // namespace oam::server
