// An open log: every text goes to the file with one write(2), so whoever looks at the file sees it
// at once, and so does who comes after a death of the process.
#pragma once

#include <string_view>

class LogStream {
  public:
    LogStream() noexcept = default;
    LogStream(const LogStream&) = delete;
    LogStream& operator=(const LogStream&) = delete;

    // Creates or empties the file; false when it cannot be had.
    bool Open(const char* path) noexcept;
    bool IsOpen() const noexcept { return descriptor_ >= 0; }
    // Closed in any case; false when the system reports a failure.
    bool Close() noexcept;

    // False when not all of the text could be written.
    bool Put(std::string_view text) noexcept;
    // What comes next overwrites the file from its start.
    void Rewind() noexcept;

  private:
    int descriptor_ = -1;
};
