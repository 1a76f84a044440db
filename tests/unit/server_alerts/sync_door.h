// Stands before fdatasync, the call after which numbers count as being on the disk.
#pragma once

#include <functional>

namespace oam::server {

// For its life `atSync` is called, on the thread that syncs, before each: 0 lets it happen, another
// value is the error that it ends with. One at a time; made and ended while no other thread syncs.
class SyncDoor {
  public:
    explicit SyncDoor(std::function<int()> atSync);
    ~SyncDoor();
    SyncDoor(const SyncDoor&) = delete;
    SyncDoor& operator=(const SyncDoor&) = delete;
};

}  // namespace oam::server
