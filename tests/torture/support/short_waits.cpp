#include "short_waits.h"

#include <chrono>
#include <thread>

#include "zol/zol.h"

namespace oam::torture {

void UseShortWaits() {}

}  // namespace oam::torture

// Before the libraries' own, for every library of the process.
#define IN_FRONT extern "C" __attribute__((visibility("default")))

IN_FRONT void zolSleep(unsigned seconds) noexcept {
    std::this_thread::sleep_for(std::chrono::milliseconds(seconds));
}

IN_FRONT void zolSleepMs(unsigned milliseconds) noexcept {
    std::this_thread::sleep_for(std::chrono::microseconds(milliseconds));
}
