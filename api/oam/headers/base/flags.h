// One-byte switches that any thread reads and few write.
//
// The exported g_bOamIsRunning is a plain byte for those who look at it from outside; inside it is
// read and written atomically through the functions below.
#pragma once

#include <atomic>

#include "oam/entry.h"

inline bool OamIsRunning() noexcept {
    return std::atomic_ref<bool>(g_bOamIsRunning).load(std::memory_order_acquire);
}

inline void SetOamIsRunning(bool running) noexcept {
    std::atomic_ref<bool>(g_bOamIsRunning).store(running, std::memory_order_release);
}

// The Supervisor's settings, from its keywords of the same names; set at each start of the database
// and by each commit of the Supervisor.
extern std::atomic<bool> g_bAutoStartEnabled;
extern std::atomic<bool> g_bAutoStopEnabled;
extern std::atomic<bool> g_bSynchronizeEnabled;
extern std::atomic<bool> g_bOammonLog;
static_assert(sizeof(std::atomic<bool>) == 1);
