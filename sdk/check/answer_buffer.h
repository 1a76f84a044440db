// A buffer that an entry answers into, with a guard area before and behind it. It is filled with a
// pattern, so that every byte that was written shows.
#pragma once

#include <string>
#include <vector>

#include "module_kind.h"

namespace oam::check {

class AnswerBuffer {
  public:
    explicit AnswerBuffer(std::size_t size);

    char* Data() { return bytes_.data() + kGuard; }
    bool IsUntouched() const { return FirstWritten(kGuard, kGuard + size_) < 0; }
    bool IsTerminated() const;
    const char* Text() const { return bytes_.data() + kGuard; }

    // Tells what the entry did wrong, given its result. False when the answer cannot be used.
    bool Judge(Entry entry, const std::string& subject, unsigned int result) const;

  private:
    static constexpr std::size_t kGuard = 512;

    // The offset in the buffer of the first byte that is not the pattern's, or -1.
    long FirstWritten(std::size_t begin, std::size_t end) const;

    std::size_t size_;
    std::vector<char> bytes_;
};

}  // namespace oam::check
