// The page's files, which are part of the program.
#pragma once

#include <cstddef>
#include <string_view>

namespace oam::console {

struct PageFile {
    const char* path;  // "/page/app.js"
    const char* type;
    const char* tag;  // of the content, in quotes as an ETag is
    const char* bytes;
    std::size_t size;
};

// Null when there is none. "/" is the page itself.
const PageFile* FindPageFile(std::string_view path);

// All of them, for those who measure.
extern const PageFile kPageFiles[];
extern const std::size_t kPageFileCount;

}  // namespace oam::console
