#include "configuration/scratch_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace oam::server {
namespace {

constexpr const char* kName = "scratch-";

[[noreturn]] void fail(const std::string& path) {
    throw std::system_error(errno, std::generic_category(), path);
}

}  // namespace

ScratchFile::ScratchFile(const std::string& directory)
    : path_(directory + "/oam/" + kName + "XXXXXX") {
    descriptor_ = mkostemp(path_.data(), O_CLOEXEC);
    if (descriptor_ < 0) fail(path_);
}

ScratchFile::~ScratchFile() {
    close(descriptor_);
    unlink(path_.c_str());
}

void ScratchFile::RemoveLeftOver(const std::string& directory) {
    std::error_code ignored;  // what cannot be removed hinders nobody
    for (const auto& entry : std::filesystem::directory_iterator(directory + "/oam", ignored))
        if (entry.path().filename().string().starts_with(kName))
            std::filesystem::remove(entry.path(), ignored);
}

void ScratchFile::Append(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor_, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) fail(path_);
        bytes.remove_prefix(static_cast<std::size_t>(written));
        size_ += static_cast<std::size_t>(written);
    }
}

std::string ScratchFile::Read(std::size_t most) {
    // An export appears under its name, as another file.
    if (read_ == 0) {
        const int reopened = open(path_.c_str(), O_RDONLY | O_CLOEXEC);
        if (reopened < 0) fail(path_);
        close(descriptor_);
        descriptor_ = reopened;
    }
    std::string bytes(most, '\0');
    const ssize_t got = pread(descriptor_, bytes.data(), most, static_cast<off_t>(read_));
    if (got < 0) fail(path_);
    bytes.resize(static_cast<std::size_t>(got));
    read_ += bytes.size();
    return bytes;
}

}  // namespace oam::server
