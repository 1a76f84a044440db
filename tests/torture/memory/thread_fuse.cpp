#include "thread_fuse.h"

#include <atomic>

namespace oam::torture {

namespace {

std::atomic<bool> isArmed{false};
std::atomic<bool> isFromThereOn{false};
std::atomic<std::size_t> failing{0};
std::atomic<std::size_t> starts{0};

}  // namespace

ThreadFuse::ThreadFuse(std::size_t nth, Failing how) noexcept {
    failing = nth;
    isFromThereOn = how == Failing::kFromThereOn;
    starts = 0;
    isArmed = true;
}

ThreadFuse::~ThreadFuse() { isArmed = false; }

std::size_t ThreadFuse::Starts() noexcept { return starts; }

bool ThreadFuse::FailsNow() noexcept {
    if (!isArmed) return false;
    const std::size_t start = ++starts;
    if (failing == 0) return false;
    return isFromThereOn ? start >= failing : start == failing;
}

}  // namespace oam::torture
