// A file that lies in memory but has a path, for code that opens its file by name.
#pragma once

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "fuzz_target.h"

class MemoryFile {
  public:
    MemoryFile() : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
        oam::fuzz::Require(descriptor_ >= 0, "a file in memory can be made");
        path_ = "/proc/self/fd/" + std::to_string(descriptor_);
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    const char* Path() const { return path_.c_str(); }

    void Write(std::string_view content) const {
        const bool written = ftruncate(descriptor_, 0) == 0 &&
                             pwrite(descriptor_, content.data(), content.size(), 0) ==
                                 static_cast<ssize_t>(content.size());
        oam::fuzz::Require(written, "a file in memory can be written");
    }

    std::string Read() const {
        struct stat status {};
        oam::fuzz::Require(fstat(descriptor_, &status) == 0, "a file in memory has a size");
        std::string content(static_cast<size_t>(status.st_size), '\0');
        oam::fuzz::Require(pread(descriptor_, content.data(), content.size(), 0) == status.st_size,
                           "a file in memory can be read");
        return content;
    }

  private:
    int descriptor_;
    std::string path_;
};
