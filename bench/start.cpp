// From a start request until the plug-in is entered, beside a detached thread that is entered, with
// so many boards configured.

#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "gauge.h"
#include "oam/entry.h"
#include "rows.h"
#include "site.h"
#include "stopwatch.h"

namespace oam::bench {

namespace {

Gauge gauge;
std::atomic<unsigned> finished{0};
std::atomic<unsigned> refused{0};

unsigned int receive(unsigned long, const oam_msg_tag* message) {
    if (message->code != OAMEVN_STARTBOARD_DONE) return 0;
    (message->severity == OAM_INFORMATION ? finished : refused).fetch_add(1);
    return 0;
}

template <class Condition>
void await(Condition condition) {
    while (!condition()) sched_yield();
}

double since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(gauge.entered - start).count();
}

void ours(benchmark::State& state, int boards) {
    useSite({.boards = boards, .keywords = 15, .bytes = 700});
    Gauge* place = &gauge;
    BENCH_CHECK(state, _oamSendBuffer(boardName(0).c_str(), &place, sizeof place) == OAM_SUCCESS);
    (void)_oamAlertRegisterCallback(receive);
    int board = 0;
    for (auto _ : state) {
        const std::string name = boardName(board++ % boards);
        const unsigned entries = gauge.entries;
        const unsigned ends = finished;
        const auto isEntered = [=] {
            return gauge.entries.load(std::memory_order_acquire) != entries;
        };
        // A board is idle again behind the alert of its last start; a request that comes before is
        // refused, by an alert, and is none of those that are timed.
        std::chrono::steady_clock::time_point start;
        do {
            const unsigned refusals = refused;
            start = std::chrono::steady_clock::now();
            BENCH_CHECK(state, _oamStartBoard(name.c_str(), 0) == OAM_SUCCESS);
            await([=] { return isEntered() || refused != refusals; });
        } while (!isEntered());
        state.SetIterationTime(since(start));
        await([=] { return finished != ends; });
        std::this_thread::yield();
    }
    (void)_oamAlertRegisterCallback(nullptr);
}

void* enter(void*) {
    gauge.entered = std::chrono::steady_clock::now();
    gauge.entries.fetch_add(1, std::memory_order_release);
    finished.fetch_add(1);
    return nullptr;
}

void limit(benchmark::State& state) {
    for (auto _ : state) {
        const unsigned entries = gauge.entries;
        const auto start = std::chrono::steady_clock::now();
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
        pthread_t thread;
        const bool made = pthread_create(&thread, &attributes, enter, nullptr) == 0;
        pthread_attr_destroy(&attributes);
        BENCH_CHECK(state, made);
        await([=] { return gauge.entries.load(std::memory_order_acquire) != entries; });
        state.SetIterationTime(since(start));
    }
}

}  // namespace

void addStartRows() {
    for (const int boards : {1, 31, 1000}) {
        addRow("start-" + std::to_string(boards),
               "start request until the plug-in is entered, " + std::to_string(boards) + " boards",
               1.15)
            .Ours(Clock::kOwn, [=](benchmark::State& state) { ours(state, boards); })
            .Limit(Clock::kOwn, "a detached pthread", limit);
    }
}

}  // namespace oam::bench
