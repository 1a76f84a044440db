#include "file_content.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace oam {
namespace {

std::string readStart(int descriptor, size_t size, std::string* content) {
    struct stat status;
    if (fstat(descriptor, &status) != 0) return std::strerror(errno);
    if (!S_ISREG(status.st_mode)) return "it is not a regular file";
    char block[65536];
    while (content->size() < size) {
        const ssize_t length =
            read(descriptor, block, std::min(sizeof block, size - content->size()));
        if (length == 0) break;
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) return std::strerror(errno);
        content->append(block, static_cast<size_t>(length));
    }
    return {};
}

}  // namespace

FileContent LoadFile(const std::string& path) {
    FileContent file = LoadStart(path, kLargestFile + 1);
    if (file.content.size() > kLargestFile) return {{}, "it is larger than 64 MiB"};
    return file;
}

FileContent LoadStart(const std::string& path, size_t size) {
    FileContent file;
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) {
        file.error = std::strerror(errno);
        return file;
    }
    file.error = readStart(descriptor, size, &file.content);
    if (!file.error.empty()) file.content.clear();
    close(descriptor);
    return file;
}

}  // namespace oam
