// A service with four busy clients, killed thousands of times at random moments: every operation
// that it acknowledged is there after the next start, what was under way is wholly old or wholly
// new, and nothing else has changed.
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <random>
#include <thread>

#include "client.h"
#include "ledger.h"
#include "support/forked_child.h"
#include "support/installation.h"
#include "torture/crash/points.h"
#include "worker.h"

namespace oam::torture {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

// Of each place.
constexpr std::size_t kQuickKills = 150;
constexpr std::size_t kFullKills = 5000;
// A restart takes milliseconds. This is for a lock that stays held.
constexpr std::chrono::seconds kPatience{30};

class Pipe {
  public:
    Pipe() {
        if (pipe(ends_) != 0) std::abort();
    }
    ~Pipe() {
        close(ends_[0]);
        close(ends_[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int WriteEnd() const { return ends_[1]; }
    // Whether something comes in that time, before the child ends.
    bool HasSomething(microseconds time, const test::ForkedChild& child) const {
        const auto nanoseconds = std::chrono::nanoseconds(time).count();
        const timespec patience{nanoseconds / 1000000000, nanoseconds % 1000000000};
        pollfd ready[] = {{ends_[0], POLLIN, 0}, {child.Descriptor(), POLLIN, 0}};
        return ppoll(ready, 2, &patience, nullptr) > 0 && (ready[0].revents & POLLIN) != 0;
    }

  private:
    int ends_[2];
};

// On a disk most deaths find the service in a sync. In memory, where a sync costs nothing, they
// find it everywhere else.
struct Place {
    const char* name;
    const char* directory;
};

std::ostream& operator<<(std::ostream& out, const Place& place) { return out << place.name; }

class KillSoak : public testing::TestWithParam<Place> {
  protected:
    void SetUp() override {
        home_.AddModule("recorder.bpi", kPlugin);
        ScriptPlugin(recorder_, kPlugin, oracle_);
        test::ForkedChild preparation(&PrepareInstallation);
        ASSERT_TRUE(preparation.EndsWithin(kPatience) && preparation.IsDone());
        watcher_.emplace([this] { return RunWatcher(oracle_); });
    }

    // Runs a worker up to its death: in its start, or after it.
    void KillOne() {
        for (Lane& lane : oracle_.lanes) lane.Clear();
        const Pipe pipe;
        const unsigned long seed = random_();
        const auto begun = steady_clock::now();
        test::ForkedChild worker(
            [&] { return RunWorker(oracle_, home_.Root(), seed, pipe.WriteEnd()); });
        if (random_() % 5 == 0) {
            (void)pipe.HasSomething(AnyTimeUpTo(restart_), worker);
        } else {
            ASSERT_TRUE(pipe.HasSomething(kPatience, worker))
                << "the start after a kill did not come to its end, status " << worker.Status()
                << ' ' << oracle_.Fault();
            restart_ = std::chrono::duration_cast<microseconds>(steady_clock::now() - begun);
            ledger_.figures.longestRestart =
                std::max(ledger_.figures.longestRestart, restart_ / std::chrono::milliseconds(1));
            worker.EndsWithin(AnyTime());
        }
        worker.Kill();
        ASSERT_TRUE(worker.WasKilled())
            << "the worker ended by itself, status " << worker.Status() << ' ' << oracle_.Fault();
        ++ledger_.figures.kills;
        const bool hasReported = pipe.HasSomething(microseconds(0), worker);
        const std::string fault = hasReported ? ledger_.Settle() : "";
        ASSERT_EQ(fault + oracle_.Fault(), "") << ledger_.Story();
    }

    // The watcher goes on: the lock of the shadow is not left held.
    void AwaitWatcher() {
        const std::uint64_t now = oracle_.sweeps;
        const auto end = steady_clock::now() + kPatience;
        while (oracle_.sweeps < now + 2) {
            ASSERT_LT(steady_clock::now(), end) << "another process does not get the shadow";
            std::this_thread::sleep_for(microseconds(200));
        }
    }

    const SoakFigures& Figures() const { return ledger_.figures; }

  private:
    // From at once to a third of a second, as often below three milliseconds as above.
    microseconds AnyTime() {
        const double exponent = std::uniform_real_distribution<>(4, 18.5)(random_);
        return microseconds(static_cast<long>(std::exp2(exponent)));
    }
    microseconds AnyTimeUpTo(microseconds most) {
        return microseconds(std::uniform_int_distribution<long>(0, most.count())(random_));
    }

    test::Installation home_{test::Layout::kComplete, GetParam().directory};
    test::Recorder recorder_;
    Oracle& oracle_ = Oracle::Make();
    Ledger ledger_{oracle_, home_.Root()};
    std::mt19937_64 random_{Seed()};
    std::optional<test::ForkedChild> watcher_;
    microseconds restart_{10000};
};

// The places together, at the program's end.
class TellTotals : public testing::Environment {
  public:
    void TearDown() override {
        if (totals.kills > 0 && testing::UnitTest::GetInstance()->Passed())
            TellFigures("kill soak, " + totals.Text());
    }
    static inline SoakFigures totals;
};
const auto* const kTellTotals = testing::AddGlobalTestEnvironment(new TellTotals);

TEST_P(KillSoak, LosesNoAcknowledgedOperation) {
    const std::size_t kills = IsFull() ? kFullKills : kQuickKills;
    for (std::size_t i = 0; i < kills; ++i) {
        SCOPED_TRACE("kill " + std::to_string(i) +
                     " of OAM_TORTURE_SEED=" + std::to_string(Seed()));
        ASSERT_NO_FATAL_FAILURE(KillOne());
        ASSERT_NO_FATAL_FAILURE(AwaitWatcher());
    }
    TellFigures(std::string("kill soak ") + GetParam().name + ", " + Figures().Text());
    TellTotals::totals.Add(Figures());
}

INSTANTIATE_TEST_SUITE_P(Each, KillSoak,
                         testing::Values(Place{"on a disk", "/tmp"},
                                         Place{"in memory", "/dev/shm"}),
                         [](const auto& place) {
                             std::string name = place.param.name;
                             std::erase(name, ' ');
                             return name;
                         });

}  // namespace
}  // namespace oam::torture
