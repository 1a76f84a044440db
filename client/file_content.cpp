#include "file_content.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace oam {
namespace {

FileContent failed(int code) { return {{}, std::strerror(code), code}; }

FileContent readStart(int descriptor, size_t size) {
    struct stat status;
    if (fstat(descriptor, &status) != 0) return failed(errno);
    if (!S_ISREG(status.st_mode)) return {{}, "it is not a regular file"};
    FileContent file;
    char block[65536];
    while (file.content.size() < size) {
        const ssize_t length =
            read(descriptor, block, std::min(sizeof block, size - file.content.size()));
        if (length == 0) break;
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) return failed(errno);
        file.content.append(block, static_cast<size_t>(length));
    }
    return file;
}

}  // namespace

FileContent LoadFile(const std::string& path) {
    FileContent file = LoadStart(path, kLargestFile + 1);
    if (file.content.size() > kLargestFile) return {{}, "it is larger than 64 MiB", EFBIG};
    return file;
}

FileContent LoadStart(const std::string& path, size_t size) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) return failed(errno);
    FileContent file = readStart(descriptor, size);
    close(descriptor);
    return file;
}

}  // namespace oam
