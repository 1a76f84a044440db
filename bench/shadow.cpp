// The board shadow, read and written by processes of their own, beside a table in place. What one
// would use instead of shared memory is a call over the bus.

#include <systemd/sd-bus.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bus_peer.h"
#include "oam/entry.h"
#include "rows.h"
#include "site.h"
#include "stopwatch.h"

namespace oam::bench {

namespace {

constexpr Shape kShape{};

// What the program prints: seconds; negative when it failed.
double secondsOf(const std::string& program, const char* side, int count) {
    const std::string command = program + " " + side + " " + std::to_string(count);
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return -1;
    double seconds = -1;
    if (std::fscanf(pipe, "%lf", &seconds) != 1) seconds = -1;
    return pclose(pipe) == 0 ? seconds : -1;
}

void inProgram(benchmark::State& state, const char* program, const char* side, int count) {
    useSite(kShape);
    for (auto _ : state) {
        const double seconds = secondsOf(program, side, count);
        BENCH_CHECK(state, seconds >= 0);
        state.SetIterationTime(seconds);
    }
}

void read(benchmark::State& state, const char* side) {
    inProgram(state, OAM_BENCH_SHADOW_READER, side, 20000);
}

void write(benchmark::State& state, const char* side) {
    inProgram(state, OAM_BENCH_SHADOW_WRITER, side, 5000);
}

void overTheBus(benchmark::State& state) {
    BusPeer bus;
    BENCH_CHECK(state, bus.IsConnected());
    bool good = true;
    unsigned board = 0;
    for (auto _ : state) {
        unsigned number = 0;
        board = (board + 1) % 31;
        good = bus.NumberOf(boardName(static_cast<int>(board)).c_str(), &number) &&
               number == board && good;
    }
    BENCH_CHECK(state, good);
}

}  // namespace

void addShadowRows() {
    addRow("shadow-read", "shadow look-up by name among 31, another process", 1.6)
        .Ours(Clock::kOnce, [](benchmark::State& state) { read(state, "ours"); })
        .Limit(Clock::kOnce, "in place, robust mutex",
               [](benchmark::State& state) { read(state, "limit"); })
        .Peer(Clock::kWhole, "D-Bus call, private bus", overTheBus);
    addRow("shadow-write", "shadow update of 31 boards", 4)
        .Ours(Clock::kOnce, [](benchmark::State& state) { write(state, "ours"); })
        .Limit(Clock::kOnce, "one write in place",
               [](benchmark::State& state) { write(state, "limit"); });
}

}  // namespace oam::bench
