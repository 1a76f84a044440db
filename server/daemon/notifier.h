// What systemd wants to know: ready, what is going on, alive. Without systemd it does nothing.
#pragma once

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>

namespace oam::server {

class Notifier {
  public:
    Notifier() = default;
    ~Notifier();
    Notifier(const Notifier&) = delete;
    Notifier& operator=(const Notifier&) = delete;

    // A line for `systemctl status`.
    void Status(const std::string& text) const;
    // The service has started. From now on the watchdog is fed by a thread that has been through
    // both database locks each time: a database that hangs is a daemon that hangs.
    void Ready();
    void Reloading() const;
    void Reloaded() const;
    void Stopping();

    // The listening socket that systemd passed on, or -1. What it is not made for is a
    // std::runtime_error.
    static int InheritedSocket();

  private:
    // Of the feeding thread, which may hang in the database and be left behind there.
    struct Feeding {
        std::atomic<bool> isStopping{false};
        std::promise<void> ended;
    };
    static void Feed(const std::shared_ptr<Feeding>& feeding, std::chrono::microseconds period);

    bool isStopping_ = false;
    std::shared_ptr<Feeding> feeding_;
    std::thread thread_;
};

}  // namespace oam::server
