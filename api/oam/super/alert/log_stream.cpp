#include "log_stream.h"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <utility>

namespace {

constexpr mode_t kNewFileMode = 0666;  // the process's umask applies

}  // namespace

bool LogStream::Open(const char* path) noexcept {
    descriptor_ = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kNewFileMode);
    return IsOpen();
}

bool LogStream::Close() noexcept { return close(std::exchange(descriptor_, -1)) == 0; }

bool LogStream::Put(std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t written = write(descriptor_, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

void LogStream::Rewind() noexcept { (void)lseek(descriptor_, 0, SEEK_SET); }
