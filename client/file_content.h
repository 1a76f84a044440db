// A whole file in memory, for files that are small by nature.
//
// Only regular files are read, and without waiting: a named pipe or a device in a directory must
// not stop a command for ever.
#pragma once

#include <string>

namespace oam {

struct FileContent {
    std::string content;
    std::string error;  // empty: the file was read
    int code = 0;       // of an error the errno; 0: it is no regular file
};

constexpr size_t kLargestFile = size_t{64} << 20;

// The whole file; one larger than kLargestFile is an error.
FileContent LoadFile(const std::string& path);

// At most the first `size` bytes.
FileContent LoadStart(const std::string& path, size_t size);

}  // namespace oam
