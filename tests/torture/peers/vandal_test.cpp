// Somebody writes any bytes into the segment and its journal while others read and publish: they
// are answered with codes, nobody dies or waits without end, and the next change puts all right.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "oam/shadow.h"
#include "peer_files.h"
#include "storm.h"
#include "support/forked_child.h"
#include "survivor.h"
#include "torture/crash/points.h"
#include "unit/platform/shared_directory.h"
#include "visitor.h"

namespace oam::torture {
namespace {

constexpr std::uint64_t kQuickRounds = 2000;
constexpr std::uint64_t kFullRounds = 100000;
constexpr std::chrono::minutes kPatience{10};

// Some bytes at a time, as often a whole number at a place where one lies.
int spoilFiles(unsigned long seed) {
    std::mt19937_64 random(seed);
    const int files[] = {open(SharedPath(kSegmentFile).c_str(), O_WRONLY | O_CLOEXEC),
                         open(SharedPath(kJournalFile).c_str(), O_WRONLY | O_CLOEXEC)};
    for (;;) {
        const std::uint64_t word = random();
        const bool isSmall = random() % 2 == 0;
        const std::uint64_t bytes = isSmall ? word % 64 : word;
        const auto place = static_cast<off_t>(random() % 4 == 0 ? 0 : random() % kShadowSize);
        if (pwrite(files[random() % 2], &bytes, sizeof bytes, place) < 0) return 1;
    }
}

int useFiles(Storm& storm, std::size_t peer) {
    if (oamShadowInit() != OAM_SUCCESS) {
        storm.Tell("a peer cannot attach");
        return 1;
    }
    for (;; ++storm.rounds.at(peer)) {
        const std::string fault = ReadAnything();
        if (!fault.empty()) storm.Tell(fault);
        if (peer == 0 && Publish(*oamShadowGetPtr(), storm.rounds[0] % 40) != OAM_SUCCESS)
            storm.Tell("a writer cannot publish");
    }
}

using Vandal = SharedDirectory;

TEST_F(Vandal, InTheFilesHindersNobody) {
    LeaveTable(1);
    Storm& storm = Storm::Make();
    test::ForkedChild vandal([] { return spoilFiles(Seed()); });
    std::vector<std::unique_ptr<test::ForkedChild>> peers;
    constexpr std::size_t kPeers = 3;
    for (std::size_t peer = 0; peer < kPeers; ++peer)
        peers.push_back(
            std::make_unique<test::ForkedChild>([&storm, peer] { return useFiles(storm, peer); }));
    const std::uint64_t rounds = IsFull() ? kFullRounds : kQuickRounds;
    const auto end = std::chrono::steady_clock::now() + kPatience;
    for (std::size_t peer = 0; peer < kPeers; ++peer) {
        while (storm.rounds[peer] < rounds) {
            ASSERT_FALSE(peers[peer]->EndsWithin(std::chrono::milliseconds(1)))
                << "peer " << peer << " came to status " << peers[peer]->Status();
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "peer " << peer << " is stuck";
        }
    }
    ASSERT_FALSE(vandal.EndsWithin(std::chrono::milliseconds(0)));
    vandal.Kill();
    peers.clear();
    EXPECT_EQ(storm.Fault(), "");
    LeaveTable(2);
    EXPECT_EQ(NextPeer({2}, 3), "");
    TellFigures("shadow peer, files that change under them",
                std::to_string(rounds) + " rounds of each peer, 0 crashes, 0 stuck");
}

}  // namespace
}  // namespace oam::torture
