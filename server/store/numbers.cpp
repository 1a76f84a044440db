#include "store/numbers.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <optional>

#include "store/database.h"

namespace oam::server {
namespace {

constexpr std::size_t kLineSize = 76;
constexpr std::size_t kStartAt = 13;
constexpr std::size_t kAlertAt = 40;
constexpr std::size_t kDigits = 20;

class File {
  public:
    File(const std::string& path, int flags)
        : descriptor_(open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, 0644)) {}
    ~File() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool IsOpen() const { return descriptor_ >= 0; }
    bool HasSize(std::size_t size) const {
        struct stat facts;
        return fstat(descriptor_, &facts) == 0 && facts.st_size == static_cast<off_t>(size);
    }
    std::string Read(std::size_t most) const {
        std::string bytes(most, '\0');
        const ssize_t count = pread(descriptor_, bytes.data(), most, 0);
        bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return bytes;
    }
    bool Write(const std::string& bytes) const {
        const ssize_t count = pwrite(descriptor_, bytes.data(), bytes.size(), 0);
        if (count >= 0 && count != static_cast<ssize_t>(bytes.size())) errno = ENOSPC;
        return count == static_cast<ssize_t>(bytes.size()) && fdatasync(descriptor_) == 0;
    }

  private:
    int descriptor_;
};

[[noreturn]] void fail(const std::string& path, const char* words) {
    throw StoreError('"' + path + "\": " + words);
}

std::uint32_t checkValue(const std::string& bytes) {
    std::uint32_t value = 2166136261u;  // FNV-1a
    for (const char c : bytes) value = (value ^ static_cast<unsigned char>(c)) * 16777619u;
    return value;
}

std::string lineOf(std::uint64_t start, std::uint64_t alert) {
    char text[kLineSize + 1];
    std::snprintf(text, sizeof text, "oamd 1 start %020" PRIu64 " alert %020" PRIu64, start, alert);
    std::string line = text;
    std::snprintf(text, sizeof text, " check %08" PRIx32 "\n", checkValue(line));
    return line + text;
}

std::uint64_t numberAt(const std::string& line, std::size_t place) {
    std::uint64_t number = 0;
    std::from_chars(line.data() + place, line.data() + place + kDigits, number);
    return number;
}

std::uint64_t microsecondsNow() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::microseconds>(now).count());
}

void syncDirectoryOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string name = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const int directory = open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isSynced = directory >= 0 && fsync(directory) == 0;
    const int reason = errno;
    if (directory >= 0) close(directory);
    if (!isSynced) fail(name, std::strerror(reason));
}

// Beside it and renamed, so that the file is whole from its first moment on.
void create(const std::string& path, const std::string& line) {
    const std::string fresh = path + ".new";
    if (unlink(fresh.c_str()) != 0 && errno != ENOENT) fail(fresh, std::strerror(errno));
    {
        const File file(fresh, O_WRONLY | O_CREAT | O_EXCL);
        if (!file.IsOpen() || !file.Write(line)) fail(fresh, std::strerror(errno));
    }
    if (std::rename(fresh.c_str(), path.c_str()) != 0) fail(path, std::strerror(errno));
    syncDirectoryOf(path);
}

void write(const std::string& path, const std::string& line) {
    const File file(path, O_WRONLY);
    if (file.IsOpen() && file.HasSize(line.size())) {
        if (!file.Write(line)) fail(path, std::strerror(errno));
        return;
    }
    if (!file.IsOpen() && errno != ENOENT) fail(path, std::strerror(errno));
    create(path, line);
}

struct Saved {
    std::uint64_t start = 0;
    std::uint64_t alert = 0;
};

Saved readSaved(const std::string& path, bool isFirstStart) {
    const File file(path, O_RDONLY);
    if (!file.IsOpen()) {
        if (errno == ENOENT && isFirstStart) return {};
        fail(path, std::strerror(errno));
    }
    const std::string line = file.Read(kLineSize + 1);
    if (line.size() != kLineSize) fail(path, "the file is spoiled");
    const Saved saved{numberAt(line, kStartAt), numberAt(line, kAlertAt)};
    if (line != lineOf(saved.start, saved.alert)) fail(path, "the file is spoiled");
    return saved;
}

}  // namespace

Numbers::Numbers(const std::string& path, bool isFirstStart, std::uint64_t block)
    : path_(path), block_(block) {
    try {
        const Saved saved = readSaved(path, isFirstStart);
        start_ = saved.start + 1;
        lastAlert_ = saved.alert;
        Reserve(lastAlert_ + block_);
        return;
    } catch (const StoreError& error) {
        trouble_ = error.what();
    }
    start_ = lastAlert_ = microsecondsNow();
    try {
        Reserve(lastAlert_ + block_);
    } catch (const StoreError&) {
        // The writer tries again, and says so.
    }
}

void Numbers::Reserve(std::uint64_t lastAlert) {
    write(path_, lineOf(start_, lastAlert));
    reserved_ = lastAlert;
}

}  // namespace oam::server
