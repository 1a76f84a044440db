// The one log stream: the start-up log while the service starts, the board trace log while the
// Supervisor's "OammonLog" is on.
//
// The log's lock covers every write and the opening and closing. It is a leaf: nothing else is
// taken and nobody is called while it is held, so whatever a line needs is looked up before.
#pragma once

#include <atomic>

#include "korcore/guard.h"
#include "log_stream.h"
#include "oam/codes.h"
#include "oam/message.h"

// The time as "Fri Nov 20 23:25:29": weekday, month, day and time, without the year.
struct TimeStamp {
    TimeStamp() noexcept;
    char text[32];
};

class LogFile {
  public:
    // Keeps the old file once, as the name with its extension replaced by "bak", and writes the
    // start line.
    oam_result Begin(const char* path) noexcept;
    // Writes the stop line.
    oam_result End() noexcept;
    bool IsOpen() const noexcept { return isOpen_.load(std::memory_order_acquire); }

    // Calls write(LogStream&) on the open stream; a log that has been closed meanwhile is no
    // failure.
    template <class WriteLine>
    oam_result Write(WriteLine write) noexcept {
        KorGuard hold(mutex_);
        return stream_.IsOpen() ? write(stream_) : OAM_SUCCESS;
    }

  private:
    bool PutStamped(const TimeStamp& now, const char* what) noexcept REQUIRES(mutex_);

    CKorMutex mutex_{0, nullptr, 0};
    LogStream stream_ GUARDED_BY(mutex_);
    std::atomic<bool> isOpen_{false};
};

LogFile& alertLog() noexcept;
