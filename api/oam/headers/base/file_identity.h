// What tells a file that has not changed: where it lies on which device, its size, and when its
// content and its status changed, to the nanosecond.
//
// A file that changed within one tick of the system's clock, before and after it was read, would
// look the same. So one that changed shortly before it was read is not known again.
#pragma once

#include <sys/stat.h>
#include <time.h>

namespace oam {

class FileIdentity {
  public:
    // Nothing is equal to it.
    FileIdentity() noexcept = default;

    // Of a file that is read now.
    static FileIdentity Of(const struct stat& status) noexcept {
        FileIdentity identity;
        timespec now;
        if (clock_gettime(CLOCK_REALTIME, &now) != 0) return identity;
        if (IsNear(status.st_mtim, now) || IsNear(status.st_ctim, now)) return identity;
        identity.isKnown_ = true;
        identity.device_ = status.st_dev;
        identity.inode_ = status.st_ino;
        identity.size_ = status.st_size;
        identity.modified_ = status.st_mtim;
        identity.changed_ = status.st_ctim;
        return identity;
    }

    bool IsKnown() const noexcept { return isKnown_; }
    bool IsOf(const struct stat& status) const noexcept {
        return isKnown_ && inode_ == status.st_ino && device_ == status.st_dev &&
               size_ == status.st_size && IsSame(modified_, status.st_mtim) &&
               IsSame(changed_, status.st_ctim);
    }

  private:
    static constexpr long long kNear = 20'000'000;  // ns; old kernels' clocks tick every ten ms

    static bool IsSame(const timespec& left, const timespec& right) noexcept {
        return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
    }
    static bool IsNear(const timespec& left, const timespec& right) noexcept {
        const long long seconds = static_cast<long long>(left.tv_sec) - right.tv_sec;
        if (seconds > 1 || seconds < -1) return false;
        const long long apart = seconds * 1'000'000'000 + left.tv_nsec - right.tv_nsec;
        return apart <= kNear && apart >= -kNear;
    }

    bool isKnown_ = false;
    dev_t device_ = 0;
    ino_t inode_ = 0;
    off_t size_ = 0;
    timespec modified_{};
    timespec changed_{};
};

}  // namespace oam
