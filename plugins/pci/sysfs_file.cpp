#include "sysfs_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>

#include "kit/text_scan.h"

namespace oam::pci {
namespace {

// Opening never waits, as it would for a pipe without another end, and only a regular file is used.
class OpenFile {
  public:
    OpenFile(const std::string& path, int flags)
        : descriptor_(open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
        struct stat status {};
        isRegular_ =
            descriptor_ >= 0 && fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
    }
    ~OpenFile() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    bool IsRegular() const { return isRegular_; }
    int Descriptor() const { return descriptor_; }

  private:
    int descriptor_;
    bool isRegular_ = false;
};

// The bytes read up to the end of the buffer or of the file; negative when it cannot be read.
template <std::size_t size>
ssize_t readInto(int descriptor, std::array<char, size>* bytes) {
    std::size_t count = 0;
    while (count < size) {
        const auto got = read(descriptor, bytes->data() + count, size - count);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return got;
        if (got == 0) break;
        count += static_cast<std::size_t>(got);
    }
    return static_cast<ssize_t>(count);
}

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};

}  // namespace

std::optional<std::string> readAttribute(const std::string& path) {
    const OpenFile file(path, O_RDONLY);
    if (!file.IsRegular()) return {};
    std::array<char, kLongestAttribute + 1> bytes;
    const auto count = readInto(file.Descriptor(), &bytes);
    if (count < 0 || static_cast<std::size_t>(count) > kLongestAttribute) return {};
    const auto text = kit::trimmed({bytes.data(), static_cast<std::size_t>(count)});
    if (kit::hasControl(text)) return {};
    return std::string(text);
}

bool writeAttribute(const std::string& path, const std::string& text) {
    const OpenFile file(path, O_WRONLY | O_TRUNC);
    if (!file.IsRegular()) return false;
    ssize_t written = 0;
    do {
        written = write(file.Descriptor(), text.data(), text.size());
    } while (written < 0 && errno == EINTR);
    return written == static_cast<ssize_t>(text.size());
}

std::string linkedName(const std::string& path) {
    std::array<char, kLongestAttribute> target;
    const auto size = readlink(path.c_str(), target.data(), target.size());
    if (size <= 0 || static_cast<std::size_t>(size) == target.size()) return {};
    const std::string text(target.data(), static_cast<std::size_t>(size));
    return text.substr(text.rfind('/') + 1);
}

bool isDirectory(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::optional<std::vector<std::string>> listNames(const std::string& path, std::size_t most) {
    const std::unique_ptr<DIR, CloseDirectory> directory(opendir(path.c_str()));
    if (!directory) return {};
    std::vector<std::string> names;
    while (names.size() < most) {
        const auto* const entry = readdir(directory.get());
        if (entry == nullptr) break;
        if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
    }
    std::ranges::sort(names);
    return names;
}

}  // namespace oam::pci
