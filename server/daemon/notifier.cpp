#include "daemon/notifier.h"

#include <sys/socket.h>
#include <systemd/sd-daemon.h>
#include <time.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "oam/entry.h"

namespace oam::server {

Notifier::~Notifier() { Stopping(); }

void Notifier::Status(const std::string& text) const {
    (void)sd_notify(0, ("STATUS=" + text).c_str());
}

void Notifier::Ready() {
    (void)sd_notify(0, "READY=1\nSTATUS=serving");
    std::uint64_t limit = 0;
    if (sd_watchdog_enabled(0, &limit) <= 0) return;
    feeding_ = std::make_shared<Feeding>();
    thread_ = std::thread([feeding = feeding_, period = std::chrono::microseconds(limit / 3)] {
        Feed(feeding, period);
        feeding->ended.set_value();
    });
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
    if (isStopping_) return;
    isStopping_ = true;
    (void)sd_notify(0, "STOPPING=1");
    if (!thread_.joinable()) return;
    feeding_->isStopping = true;
    constexpr auto kPatience = std::chrono::seconds(1);
    if (feeding_->ended.get_future().wait_for(kPatience) == std::future_status::ready)
        thread_.join();
    else
        thread_.detach();
}

int Notifier::InheritedSocket() {
    constexpr int kRemoveFromEnvironment = 1;
    const int count = sd_listen_fds(kRemoveFromEnvironment);
    if (count <= 0) return -1;
    constexpr int kIsListening = 1;
    if (count > 1 || sd_is_socket(SD_LISTEN_FDS_START, AF_UNIX, SOCK_STREAM, kIsListening) <= 0)
        throw std::runtime_error(
            "what the socket unit passed on is not one listening unix stream socket");
    return SD_LISTEN_FDS_START;
}

void Notifier::Feed(const std::shared_ptr<Feeding>& feeding, std::chrono::microseconds period) {
    auto next = std::chrono::steady_clock::now();
    while (!feeding->isStopping) {
        if (std::chrono::steady_clock::now() >= next) {
            char name[2];
            (void)_oamDbEnumObjects(0, name, sizeof name);
            (void)_oamBoardEnum(0, name, sizeof name);
            if (feeding->isStopping) return;
            (void)sd_notify(0, "WATCHDOG=1");
            next = std::chrono::steady_clock::now() + period;
        }
        constexpr auto kLook = std::chrono::milliseconds(100);
        std::this_thread::sleep_for(std::min<std::chrono::microseconds>(kLook, period));
    }
}

}  // namespace oam::server
