// What systemd wants to know: ready, what is going on, alive. Without systemd it does nothing.
#pragma once

#include <atomic>
#include <chrono>
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
    // the database's lock each time: a database that hangs is a daemon that hangs.
    void Ready();
    void Reloading() const;
    void Reloaded() const;
    void Stopping();

    // The listening socket that systemd passed on, or -1.
    static int InheritedSocket();

  private:
    void Feed(std::chrono::microseconds period);

    std::atomic<bool> isStopping_{false};
    std::thread thread_;
};

}  // namespace oam::server
