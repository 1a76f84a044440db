// The service's waits, in front of the platform's own: a thousandth of their length, so that what
// it tries again for ten seconds is over at once. Nothing here is about the disk either.
#include <unistd.h>

#include <chrono>
#include <thread>

#include "zol/zol.h"

#define IN_FRONT extern "C" __attribute__((visibility("default")))

IN_FRONT void zolSleep(unsigned seconds) noexcept {
    std::this_thread::sleep_for(std::chrono::milliseconds(1) * seconds);
}

IN_FRONT void zolSleepMs(unsigned milliseconds) noexcept {
    std::this_thread::sleep_for(std::chrono::microseconds(1) * milliseconds);
}

IN_FRONT int fsync(int) { return 0; }
