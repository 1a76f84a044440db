#include "answer_buffer.h"

#include <cstring>

#include "finding.h"
#include "oam/codes.h"
#include "shown.h"

namespace oam::check {
namespace {

// No two neighbours are alike, none is a letter that texts have, and none is NUL.
char patternAt(std::size_t index) { return static_cast<char>(0x80 + index % 61); }

}  // namespace

AnswerBuffer::AnswerBuffer(std::size_t size) : size_(size), bytes_(kGuard + size + kGuard) {
    for (std::size_t i = 0; i < bytes_.size(); ++i) bytes_[i] = patternAt(i);
}

bool AnswerBuffer::IsTerminated() const { return std::memchr(Text(), '\0', size_) != nullptr; }

long AnswerBuffer::FirstWritten(std::size_t begin, std::size_t end) const {
    for (std::size_t i = begin; i < end; ++i)
        if (bytes_[i] != patternAt(i)) return static_cast<long>(i);
    return -1;
}

bool AnswerBuffer::Judge(Entry entry, const std::string& subject, unsigned int result) const {
    const std::string where = subject + ": it answered " + CodeText(result) + " and ";
    const bool isBefore = FirstWritten(0, kGuard) >= 0;
    const bool isBehind = FirstWritten(kGuard + size_, bytes_.size()) >= 0;
    if (isBefore || isBehind)
        Tell(Rule::Overrun, entry,
             where + "wrote " + (isBefore ? "before" : "behind") + " the buffer");
    if (result != OAM_SUCCESS && !IsUntouched())
        Tell(Rule::Untouched, entry, where + "wrote into the buffer");
    if (result != OAM_SUCCESS) return false;
    if (IsTerminated()) return true;
    // An overrun has lost its NUL with the rest.
    if (!isBehind) Tell(Rule::Unterminated, entry, where + "closed no text");
    return false;
}

}  // namespace oam::check
