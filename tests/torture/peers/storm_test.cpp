// Writers and readers of one shadow, of which one after the other is killed at a random moment and
// replaced: the others go on, and none of them ever sees half a change or an older one.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <random>
#include <thread>

#include "oam/shadow.h"
#include "peer_files.h"
#include "storm.h"
#include "support/forked_child.h"
#include "torture/crash/points.h"
#include "totals.h"
#include "unit/platform/shared_directory.h"

namespace oam::torture {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

constexpr std::size_t kQuickKills = 300;
constexpr std::size_t kFullKills = 10000;
constexpr std::size_t kWriters = 2;
constexpr std::chrono::seconds kPatience{30};

class PeerStorm : public SharedDirectory {
  protected:
    void Start(std::size_t peer) {
        peers_[peer] = std::make_unique<test::ForkedChild>([this, peer] {
            return peer < kWriters ? WriteInStorm(storm_, peer) : ReadInStorm(storm_, peer);
        });
    }

    // Every peer has come round since.
    void AwaitAll() {
        std::array<std::uint64_t, Storm::kPeers> before;
        std::copy(storm_.rounds.begin(), storm_.rounds.end(), before.begin());
        const auto begun = steady_clock::now();
        for (std::size_t peer = 0; peer < Storm::kPeers; ++peer) {
            while (storm_.rounds[peer] == before[peer]) {
                ASSERT_LT(steady_clock::now(), begun + kPatience) << "peer " << peer << " is stuck";
                std::this_thread::sleep_for(microseconds(50));
            }
        }
        longestWait_ = std::max(longestWait_, steady_clock::now() - begun);
    }

    void KillOne() {
        const std::size_t peer = random_() % Storm::kPeers;
        std::this_thread::sleep_for(microseconds(random_() % 500));
        peers_[peer]->Kill();
        ASSERT_TRUE(peers_[peer]->WasKilled()) << "peer " << peer << " ended by itself";
        Start(peer);
        ++TheTotals().kills;
    }

    Storm& storm_ = Storm::Make();
    steady_clock::duration longestWait_{0};

  private:
    std::mt19937_64 random_{Seed()};
    std::array<std::unique_ptr<test::ForkedChild>, Storm::kPeers> peers_;
};

TEST_F(PeerStorm, KillsPeersAtAnyMomentAndHindersNobody) {
    for (std::size_t peer = 0; peer < Storm::kPeers; ++peer) Start(peer);
    ASSERT_NO_FATAL_FAILURE(AwaitAll());
    const std::size_t kills = IsFull() ? kFullKills : kQuickKills;
    for (std::size_t i = 0; i < kills; ++i) {
        SCOPED_TRACE("kill " + std::to_string(i) +
                     " of OAM_TORTURE_SEED=" + std::to_string(Seed()));
        ASSERT_NO_FATAL_FAILURE(KillOne());
        ASSERT_NO_FATAL_FAILURE(AwaitAll());
        ASSERT_EQ(storm_.Fault(), "");
    }
    EXPECT_EQ(SharedFiles(), (std::vector<std::string>{kSegmentFile, kJournalFile, kLockFile}));
    TellFigures("shadow peer, " + std::to_string(kills) + " kills at random, " +
                    std::to_string(storm_.acknowledged) + " changes",
                "0 lost, 0 half, longest wait " +
                    std::to_string(longestWait_ / std::chrono::milliseconds(1)) + " ms");
}

}  // namespace
}  // namespace oam::torture
