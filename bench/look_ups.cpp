// What a board look-up waits while another thread commits: the slowest hundredth, beside the median
// of an idle service. The look-ups come at random moments, not one behind the other: those would
// nearly all fall between two commits.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <random>
#include <thread>
#include <vector>

#include "oam/entry.h"
#include "rows.h"
#include "site.h"
#include "stopwatch.h"

namespace oam::bench {

namespace {

constexpr Shape kShape{};
constexpr int kLookUps = 2000;

// Seconds, ascending; empty when one failed.
std::vector<double> lookUps() {
    std::mt19937 random(17);
    std::uniform_int_distribution<int> pause(0, 300);
    std::vector<double> all;
    for (int i = 0; i < kLookUps; ++i) {
        const auto until =
            std::chrono::steady_clock::now() + std::chrono::microseconds(pause(random));
        while (std::chrono::steady_clock::now() < until) {
        }
        char name[128];
        const Stopwatch watch;
        if (_oamBoardLookupByNumber(static_cast<unsigned>(i % kShape.boards), name, sizeof name) !=
            OAM_SUCCESS) {
            return {};
        }
        all.push_back(watch.Seconds());
    }
    std::sort(all.begin(), all.end());
    return all;
}

class Committer {
  public:
    Committer() : thread_([this] { Run(); }) {}
    ~Committer() {
        ends_ = true;
        thread_.join();
    }

  private:
    void Run() {
        const std::string name = boardName(3);
        for (int i = 0; !ends_; ++i) {
            unsigned long handle;
            if (_oamOpenObject(5, name.c_str(), &handle, OAM_OPEN_WRITE) != OAM_SUCCESS) continue;
            (void)_oamSetKeyword(handle, kSomeKeyword, std::to_string(i).c_str());
            (void)_oamCloseObject(handle);
        }
    }

    std::atomic<bool> ends_{false};
    std::thread thread_;
};

void whileCommitting(benchmark::State& state) {
    useSite(kShape);
    for (auto _ : state) {
        const Committer committer;
        const std::vector<double> all = lookUps();
        BENCH_CHECK(state, !all.empty());
        state.SetIterationTime(all[all.size() * 99 / 100]);
    }
}

void idle(benchmark::State& state) {
    useSite(kShape);
    for (auto _ : state) {
        const std::vector<double> all = lookUps();
        BENCH_CHECK(state, !all.empty());
        state.SetIterationTime(all[all.size() / 2]);
    }
}

}  // namespace

void addLookUpRows() {
    addRow("look-up", "board look-up while another thread commits, p99", 50)
        .Ours(Clock::kOnce, whileCommitting)
        .Limit(Clock::kOnce, "its idle median", idle);
}

}  // namespace oam::bench
