// Time by the steady clock, for sides that time a part of each round themselves.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

namespace oam::bench {

class Stopwatch {
  public:
    double Seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }

  private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// One iteration: prepare() beside the clock, work() under it.
template <class Prepare, class Work>
void timeApart(benchmark::State& state, Prepare prepare, Work work) {
    for (auto _ : state) {
        prepare();
        const Stopwatch watch;
        work();
        state.SetIterationTime(watch.Seconds());
    }
}

// An answer that must be success: what fails quickly is not fast.
#define BENCH_CHECK(state, condition)                     \
    do {                                                  \
        if (!(condition)) {                               \
            (state).SkipWithError("failed: " #condition); \
            return;                                       \
        }                                                 \
    } while (false)

}  // namespace oam::bench
