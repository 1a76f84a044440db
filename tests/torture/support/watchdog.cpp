#include "watchdog.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "places.h"
#include "stacks.h"

namespace oam::torture {

bool IsUnderValgrind() {
    const char* preloaded = std::getenv("LD_PRELOAD");
    return preloaded != nullptr &&
           std::string_view(preloaded).find("vgpreload") != std::string_view::npos;
}

// Below the limit of a test, so that the places are told before the test is ended from outside.
std::chrono::seconds Watchdog::UsualLimit() {
    if (IsUnderValgrind()) return std::chrono::minutes(20);
#ifdef OAM_SANITIZED
    return std::chrono::seconds(240);
#else
    return std::chrono::seconds(60);
#endif
}

Watchdog::Watchdog(std::chrono::seconds limit) : limit_(limit), thread_([this] { Watch(); }) {}

Watchdog::~Watchdog() {
    {
        const std::lock_guard hold(mutex_);
        isEnding_ = true;
        ended_.notify_all();
    }
    thread_.join();
}

void Watchdog::Watch() {
    std::unique_lock hold(mutex_);
    while (!ended_.wait_for(hold, std::chrono::seconds(1), [this] { return isEnding_; })) {
        const auto oldest = NowMs() - std::chrono::milliseconds(limit_).count();
        for (const Place& place : AllPlaces()) {
            const std::int64_t since = place.since;
            // None at all between two calls, of which the second may have begun since that look.
            if (since == 0 || since > oldest) continue;
            if (place.thread == 0 || place.call == nullptr) continue;
            GiveUp("a call hangs");
        }
    }
}

void Watchdog::GiveUp(const char* why) {
    fprintf(stderr, "watchdog: %s\n", why);
    PrintAllStacks();
    std::abort();
}

}  // namespace oam::torture
