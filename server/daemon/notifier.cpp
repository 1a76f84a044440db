#include "daemon/notifier.h"

#include <systemd/sd-daemon.h>
#include <time.h>

#include <algorithm>
#include <cstdint>

#include "oam/entry.h"

namespace oam::server {

Notifier::~Notifier() { Stopping(); }

void Notifier::Status(const std::string& text) const {
    (void)sd_notify(0, ("STATUS=" + text).c_str());
}

void Notifier::Ready() {
    (void)sd_notify(0, "READY=1\nSTATUS=serving");
    std::uint64_t limit = 0;
    if (sd_watchdog_enabled(0, &limit) > 0)
        thread_ = std::thread([this, limit] { Feed(std::chrono::microseconds(limit / 3)); });
}

void Notifier::Reloading() const {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const auto microseconds = static_cast<std::uint64_t>(now.tv_sec) * 1000000 +
                              static_cast<std::uint64_t>(now.tv_nsec) / 1000;
    (void)sd_notify(0, ("RELOADING=1\nMONOTONIC_USEC=" + std::to_string(microseconds)).c_str());
}

void Notifier::Reloaded() const { (void)sd_notify(0, "READY=1"); }

void Notifier::Stopping() {
    if (isStopping_.exchange(true)) return;
    (void)sd_notify(0, "STOPPING=1");
    if (thread_.joinable()) thread_.join();
}

int Notifier::InheritedSocket() {
    constexpr int kRemoveFromEnvironment = 1;
    return sd_listen_fds(kRemoveFromEnvironment) > 0 ? SD_LISTEN_FDS_START : -1;
}

void Notifier::Feed(std::chrono::microseconds period) {
    auto next = std::chrono::steady_clock::now();
    while (!isStopping_) {
        if (std::chrono::steady_clock::now() >= next) {
            char name[2];
            (void)_oamDbEnumObjects(0, name, sizeof name);
            (void)sd_notify(0, "WATCHDOG=1");
            next += period;
        }
        constexpr auto kLook = std::chrono::milliseconds(100);
        std::this_thread::sleep_for(std::min<std::chrono::microseconds>(kLook, period));
    }
}

}  // namespace oam::server
