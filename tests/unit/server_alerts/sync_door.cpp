#include "sync_door.h"

#include <cerrno>
#include <utility>

namespace {

std::function<int()>& hook() {
    static std::function<int()> hook;
    return hook;
}

}  // namespace

namespace oam::server {

SyncDoor::SyncDoor(std::function<int()> atSync) { hook() = std::move(atSync); }
SyncDoor::~SyncDoor() { hook() = nullptr; }

}  // namespace oam::server

extern "C" int __real_fdatasync(int descriptor);
extern "C" int __wrap_fdatasync(int descriptor);
extern "C" int __wrap_fdatasync(int descriptor) {
    const int error = hook() ? hook()() : 0;
    if (error == 0) return __real_fdatasync(descriptor);
    errno = error;
    return -1;
}
