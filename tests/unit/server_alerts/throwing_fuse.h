// Makes memory run out for the calling thread: its n-th `new` from now on, 1 being the next, throws
// std::bad_alloc, alone. One fuse at a time.
#pragma once

namespace oam::server {

class ThrowingFuse {
  public:
    explicit ThrowingFuse(int nth) noexcept;
    ~ThrowingFuse();
    ThrowingFuse(const ThrowingFuse&) = delete;
    ThrowingFuse& operator=(const ThrowingFuse&) = delete;

    bool HasBlown() const noexcept;
};

}  // namespace oam::server
