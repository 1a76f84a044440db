// A board's number asked for over D-Bus: two ends of a connection of their own, the answering one
// on a thread, without a daemon between them.
#pragma once

#include <systemd/sd-bus.h>

#include <atomic>
#include <thread>

namespace oam::bench {

class BusPeer {
  public:
    BusPeer();
    ~BusPeer();
    BusPeer(const BusPeer&) = delete;
    BusPeer& operator=(const BusPeer&) = delete;

    bool IsConnected() const { return client_ != nullptr; }
    bool NumberOf(const char* board, unsigned* number);

  private:
    void Serve(int descriptor);

    std::atomic<bool> ends_{false};
    sd_bus* client_ = nullptr;
    std::thread server_;
};

}  // namespace oam::bench
