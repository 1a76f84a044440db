// Ends the process when a call of the library hangs, and tells where every thread is.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace oam::torture {

bool IsUnderValgrind();

class Watchdog {
  public:
    // The longest that one call (support/places.h) may take. Under valgrind it may take much
    // longer.
    explicit Watchdog(std::chrono::seconds limit = UsualLimit());
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    // Prints the reason and all threads' places and stacks, and aborts.
    [[noreturn]] static void GiveUp(const char* why);

    static std::chrono::seconds UsualLimit();

  private:
    void Watch();

    const std::chrono::seconds limit_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool isEnding_ = false;
    std::thread thread_;
};

}  // namespace oam::torture
