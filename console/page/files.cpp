#include "page/files.h"

namespace oam::console {

const PageFile* FindPageFile(std::string_view path) {
    if (path == "/") path = "/page/index.html";
    for (std::size_t i = 0; i < kPageFileCount; ++i)
        if (path == kPageFiles[i].path) return &kPageFiles[i];
    return nullptr;
}

}  // namespace oam::console
